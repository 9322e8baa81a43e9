#include "kit/uikit/AccessibilityTree.h"
#include "kit/uikit/hid_keys.h"
#include "tests/kit/uikit/SceneTest.h"

namespace {

namespace hid = seat::hid;

class EditListener final : public NSObject {
    NS_CLASS(EditListener)
public:
    void changed(const std::shared_ptr<UIControl>& control) {
        log += std::static_pointer_cast<UITextField>(control)->text() + ";";
    }
    std::string log;
};
NS_CLASS_IMPLEMENTATION(EditListener, NSObject, method<&EditListener::changed>("changed:"))

class TextFields : public SceneTest {
protected:
    TextFields() {
        field = add<UITextField>({{10, 10}, {200, 30}});
        other = add<UITextField>({{10, 60}, {200, 30}});
        listener->init();
        field->addTarget_action_forControlEvents(listener, "changed:", UIControlEventEditingChanged);
        scene.prepareFrame();
    }
    std::shared_ptr<UIView> focused() const { return scene.window()->focusedView(); }
    // The text, with its selection in brackets or the caret as a bar.
    std::string shown(const UITextField& of) const {
        const auto text = of.accessibilityText();
        std::string result = text->text;
        if (text->selectionStart == text->selectionEnd) return result.insert(text->caret, "|");
        return result.insert(text->selectionEnd, "]").insert(text->selectionStart, "[");
    }
    std::string shown() const { return shown(*field); }
    const seat::AccessibilityNode* node() {
        scene.accessibility().update();
        for (const auto& [identity, each] : scene.accessibility().nodes())
            if (each.role == UIAccessibilityRole::TextField) return &each;
        return nullptr;
    }
    bool isPaintedAnew() { return !scene.prepareFrame().empty(); }

    std::shared_ptr<UITextField> field;
    std::shared_ptr<UITextField> other;
    std::shared_ptr<EditListener> listener = EditListener::alloc();
};

} // namespace

TEST_F(TextFields, TapFocusesAndKeysType) {
    touches.tap(*field);
    EXPECT_EQ(focused(), field);

    touches.type("Ann é");

    EXPECT_EQ(shown(), "Ann é|");
    EXPECT_EQ(listener->log, "A;An;Ann;Ann ;Ann é;");
    EXPECT_EQ(other->text(), "");
}

TEST_F(TextFields, SettingTheTextTellsNobody) {
    field->setText("abc");
    EXPECT_EQ(shown(), "abc|");
    EXPECT_EQ(listener->log, "");
}

TEST_F(TextFields, TabLeavesTheFieldAndSpaceDoesNotPress) {
    touches.tap(*field);
    touches.key(hid::tab);
    EXPECT_EQ(focused(), other);

    touches.type(" ");
    EXPECT_EQ(shown(*other), " |");
    EXPECT_EQ(field->text(), "");
}

TEST_F(TextFields, ArrowsMoveTheCaretAndNotTheFocus) {
    touches.tap(*field);
    touches.type("abc");
    touches.key(hid::left);
    EXPECT_EQ(shown(), "ab|c");
    touches.key(hid::home);
    EXPECT_EQ(shown(), "|abc");
    touches.key(hid::end, UIKeyEvent::Shift);
    EXPECT_EQ(shown(), "[abc]");
    touches.key(hid::right);
    EXPECT_EQ(shown(), "abc|");
    EXPECT_EQ(focused(), field);
    EXPECT_EQ(listener->log, "a;ab;abc;") << "moving changes nothing";
}

TEST_F(TextFields, BackspaceAndDeleteTakeCharactersOrWords) {
    touches.tap(*field);
    touches.type("one two x");
    touches.key(hid::backspace);
    EXPECT_EQ(shown(), "one two |");
    touches.key(hid::backspace, UIKeyEvent::Control);
    EXPECT_EQ(shown(), "one |");
    touches.key(hid::home);
    touches.key(hid::forwardDelete);
    EXPECT_EQ(shown(), "|ne ");
    listener->log.clear();
    touches.key(hid::backspace);
    EXPECT_EQ(listener->log, "") << "there was nothing to delete";
}

TEST_F(TextFields, CutCopyAndPasteGoThroughThePasteboard) {
    touches.tap(*field);
    touches.type("one two");
    touches.shortcut('a');
    EXPECT_EQ(shown(), "[one two]");
    touches.shortcut('c');
    EXPECT_EQ(UIPasteboard::generalPasteboard()->string(), "one two");
    touches.shortcut('x');
    EXPECT_EQ(shown(), "|");

    UIPasteboard::generalPasteboard()->setString("a\nb");
    touches.tap(*other);
    touches.shortcut('v');
    touches.shortcut('v');

    EXPECT_EQ(shown(*other), "a ba b|");
}

TEST_F(TextFields, CopyWithoutASelectionKeepsWhatWasCopied) {
    UIPasteboard::generalPasteboard()->setString("kept");
    touches.tap(*field);
    touches.type("abc");
    touches.shortcut('c');
    touches.shortcut('x');
    EXPECT_EQ(UIPasteboard::generalPasteboard()->string(), "kept");
    EXPECT_EQ(shown(), "abc|");
}

TEST_F(TextFields, DesktopsOwnShortcutsAreNotTyped) {
    touches.tap(*field);
    touches.shortcut('q');
    touches.key(4, UIKeyEvent::Alt);
    EXPECT_EQ(shown(), "|");
}

TEST_F(TextFields, PointerPlacesTheCaret) {
    field->setText("WWWWWWWWWW");
    touches.tap(CGPoint{11, 25});
    EXPECT_EQ(shown(), "|WWWWWWWWWW");
    touches.tap(CGPoint{205, 25});
    EXPECT_EQ(shown(), "WWWWWWWWWW|");
}

TEST_F(TextFields, DragSelects) {
    field->setText("WWWWWWWWWW");
    touches.drag({11, 25}, {205, 25});
    EXPECT_EQ(shown(), "[WWWWWWWWWW]");
    touches.drag({205, 25}, {11, 25});
    EXPECT_EQ(field->accessibilityText()->caret, 0u);
}

TEST_F(TextFields, TwoTapsSelectAWordAndThreeSelectAll) {
    field->setText("one two");
    touches.tap(CGPoint{14, 25});
    touches.tap(CGPoint{14, 25});
    EXPECT_EQ(shown(), "[one] two");
    touches.tap(CGPoint{14, 25});
    EXPECT_EQ(shown(), "[one two]");
}

TEST_F(TextFields, LongTextScrollsWithTheCaret) {
    std::string text;
    for (int i = 0; i < 40; ++i) text += "WW";
    field->setText(text);
    touches.tap(CGPoint{11, 25}); // what shows at the left is no longer the beginning
    EXPECT_GT(field->accessibilityText()->caret, 0u);

    touches.key(hid::home);
    touches.wait(1); // two taps in a row would be one of two
    touches.tap(CGPoint{11, 25});

    EXPECT_EQ(field->accessibilityText()->caret, 0u);
}

TEST_F(TextFields, BlanksAtTheEndTakeTheirRoom) {
    field->setText("W          ");
    touches.tap(CGPoint{40, 25});
    EXPECT_GT(field->accessibilityText()->caret, 1u);
    EXPECT_LT(field->accessibilityText()->caret, 11u);
}

TEST_F(TextFields, FocusAndItsLossArePainted) {
    EXPECT_FALSE(isPaintedAnew());
    scene.window()->setFocusedView(field);
    EXPECT_TRUE(isPaintedAnew());
    scene.window()->setFocusedView(other);
    EXPECT_TRUE(isPaintedAnew());
    EXPECT_FALSE(scene.isAnimating()) << "the caret stands still";
}

TEST_F(TextFields, DisabledFieldTakesNothing) {
    field->setEnabled(false);
    touches.tap(*field);
    EXPECT_EQ(focused(), nullptr);
    touches.type("a");
    EXPECT_EQ(field->text(), "");
}

TEST_F(TextFields, AssistiveTechnologyReadsAndWrites) {
    other->setHidden(true);
    field->setAccessibilityLabel("Subject");
    touches.tap(*field);
    touches.type("abc");

    const auto* found = node();
    ASSERT_TRUE(found);
    EXPECT_EQ(found->name, "Subject");
    ASSERT_TRUE(found->text);
    EXPECT_EQ(found->text->text, "abc");
    EXPECT_EQ(found->text->caret, 3u);
    const auto identity = found->identity;
    listener->log.clear();

    EXPECT_TRUE(scene.accessibility().setText(identity, "new text"));
    EXPECT_TRUE(scene.accessibility().selectText(identity, 0, 3));

    EXPECT_EQ(shown(), "[new] text");
    EXPECT_EQ(listener->log, "new text;");
    EXPECT_EQ(node()->text->selectionEnd, 3u);
}

TEST_F(TextFields, ChangesOfTextAndCaretAreToldOnce) {
    other->setHidden(true);
    touches.tap(*field);
    node();
    int told = 0;
    scene.accessibility().setListener(
        [&](auto, seat::AccessibilityChange change) { told += change == seat::AccessibilityChange::Text ? 1 : 0; });
    touches.type("a");
    node();
    EXPECT_EQ(told, 1);
    touches.key(hid::left);
    node();
    EXPECT_EQ(told, 2);
    scene.accessibility().setListener(nullptr);
}
