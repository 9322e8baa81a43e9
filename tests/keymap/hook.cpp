// Both ways to install the key-event hook, each in a process of its own: a hook stays for the life of the process.

#include "keymap/key_event_hook.h"

#include "keymap/JVNKeymapViewController.h"
#include "platform/runtime/method.h"
#include "platform/uikit/UIKeyEvent.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace {

int handledByBase = 0;

class HookedBase : public NSObject {
    NS_CLASS(HookedBase)
public:
    void handle(const std::shared_ptr<UIKeyEvent>&) { ++handledByBase; }
};
NS_CLASS_IMPLEMENTATION(HookedBase, NSObject, method<&HookedBase::handle>("handleKeyUIEvent:"))

int handledByOwn = 0;
bool editorHadHeardByThen = true;

class OwnHandler : public HookedBase {
    NS_CLASS(OwnHandler)
public:
    void handleOwn(const std::shared_ptr<UIKeyEvent>&) {
        ++handledByOwn;
        const auto& editor = JVNKeymapViewController::activeKeymapController();
        editorHadHeardByThen = !editor || !editor->indexPathOfCellToRemap();
    }
};
NS_CLASS_IMPLEMENTATION(OwnHandler, HookedBase, method<&OwnHandler::handleOwn>("handleKeyUIEvent:"))

class InheritedHandler : public HookedBase {
    NS_CLASS(InheritedHandler)
};
NS_CLASS_IMPLEMENTATION(InheritedHandler, HookedBase)

class NoHandler : public NSObject {
    NS_CLASS(NoHandler)
};
NS_CLASS_IMPLEMENTATION(NoHandler, NSObject)

[[noreturn]] void end(bool passed) { std::_Exit(passed ? 0 : 1); }

class KeyEventHookDeathTest : public testing::Test {
protected:
    KeyEventHookDeathTest() { testing::GTEST_FLAG(death_test_style) = "threadsafe"; }
};

TEST_F(KeyEventHookDeathTest, OnAClassWithItsOwnHandlerCallsThatFirst) {
    EXPECT_EXIT(
        {
            const auto object = OwnHandler::alloc();
            const auto editor = JVNKeymapViewController::alloc()->initWithKeymapPath("/nowhere.plist");
            editor->setIndexPathOfCellToRemap(NSIndexPath::indexPathForRow_inSection(0, 0));
            const IMP before = class_getMethodImplementation(OwnHandler::classObject(), "handleKeyUIEvent:");
            installKeyEventHookOnClass(OwnHandler::classObject());
            objc_msgSend(*object, "handleKeyUIEvent:", {UIKeyEvent::keyEvent(4, true)});
            end(handledByOwn == 1 && handledByBase == 0 && !editorHadHeardByThen && !editor->indexPathOfCellToRemap() &&
                class_getMethodImplementation(OwnHandler::classObject(), "handleKeyUIEvent:") != before);
        },
        testing::ExitedWithCode(0), "");
}

TEST_F(KeyEventHookDeathTest, ASecondTimeOnOneClassOrBelowItDoesNothing) {
    EXPECT_EXIT(
        {
            const auto object = InheritedHandler::alloc();
            installKeyEventHookOnClass(HookedBase::classObject());
            installKeyEventHookOnClass(HookedBase::classObject());
            installKeyEventHookOnClass(InheritedHandler::classObject());
            objc_msgSend(*object, "handleKeyUIEvent:", {UIKeyEvent::keyEvent(4, true)});
            end(handledByBase == 1);
        },
        testing::ExitedWithCode(0), "");
}

TEST_F(KeyEventHookDeathTest, OnAClassThatInheritsItAddsItsOwnAndForwards) {
    EXPECT_EXIT(
        {
            const auto object = InheritedHandler::alloc();
            installKeyEventHookOnClass(InheritedHandler::classObject());
            objc_msgSend(*object, "handleKeyUIEvent:", {UIKeyEvent::keyEvent(4, true)});
            const auto base = HookedBase::alloc();
            objc_msgSend(*base, "handleKeyUIEvent:", {UIKeyEvent::keyEvent(4, true)});
            end(handledByBase == 2 &&
                class_getMethodImplementation(InheritedHandler::classObject(), "handleKeyUIEvent:") !=
                    class_getMethodImplementation(HookedBase::classObject(), "handleKeyUIEvent:"));
        },
        testing::ExitedWithCode(0), "");
}

TEST_F(KeyEventHookDeathTest, WithoutAHandlerInstallsNothing) {
    EXPECT_EXIT(
        {
            installKeyEventHookOnClass(NoHandler::classObject());
            installKeyEventHookOnClass(nullptr);
            end(class_getInstanceMethod(NoHandler::classObject(), "handleKeyUIEvent:") == nullptr);
        },
        testing::ExitedWithCode(0), "");
}

} // namespace
