// A row that waits for its key: what keeps it waiting, and whose the keys are meanwhile.

#include "kit/uikit/UIWindow.h"
#include "tests/keymap/editor_test.h"

namespace {

TEST_F(KeymapEditor, TappingTheArmedRowAgainKeepsItSelected) {
    open();
    arm(3);
    arm(3);
    EXPECT_TRUE(isSelected(3));
    EXPECT_EQ(keyShown(3), "Press Key…");
    EXPECT_TRUE(keyLabel(3)->textColor()->isEqual(*UIColor::blueColor()));
}

TEST_F(KeymapEditor, ARowThatWasTappedTwiceTakesTheKeysOfTheApplicationToo) {
    open();
    for (const long key : {keyEscape, keyTab, keyReturn, keyDown}) {
        arm(3);
        arm(3);
        app.touches().key(key);
        app.settle();
        EXPECT_EQ(editor->selectedKeyCodeForNative(4), key);
        EXPECT_EQ(app.navigation()->topViewController(), editor) << key;
        EXPECT_FALSE(isSelected(3));
    }
}

TEST_F(KeymapEditor, AKeyThatIsHeldDownGoesToItsRowAloneUntilItIsReleased) {
    open();
    arm(3);
    app.touches().keyDown(keyDown);
    app.settle();
    const auto focused = app.scene().window()->focusedView();

    for (int i = 0; i < 3; ++i) app.touches().keyDown(keyDown, 0, /*isRepeat=*/true);
    app.settle();
    EXPECT_EQ(app.scene().window()->focusedView(), focused);
    app.touches().keyUp(keyDown);

    app.touches().key(keyDown);
    EXPECT_NE(app.scene().window()->focusedView(), focused) << "pressed anew it moves the focus";
    EXPECT_EQ(editor->selectedKeyCodeForNative(4), keyDown);
}

} // namespace
