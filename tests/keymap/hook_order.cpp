// When the hook of the key handler comes in, and what it hands on.

#include "keymap/JVNKeymapViewController.h"
#include "keymap/key_event_hook.h"
#include "platform/runtime/method.h"
#include "platform/uikit/UIApplication.h"
#include "platform/uikit/UIKeyEvent.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

namespace {

IMP handler(Class cls) { return class_getMethodImplementation(cls, "handleKeyUIEvent:"); }

// Set up with everything else of this program that wants setting up.
const IMP handlerAtTheStart = handler(UIApplication::classObject());

struct Call {
    NSObject* application;
    SEL command;
    id event;
};
std::vector<Call>& calls() {
    static std::vector<Call> noted;
    return noted;
}
id noteCall(NSObject& application, SEL command, std::span<const id> arguments) {
    calls().push_back({&application, command, arguments.empty() ? id() : arguments[0]});
    return id();
}

class HandlerBase : public NSObject {
    NS_CLASS(HandlerBase)
};
NS_CLASS_IMPLEMENTATION(HandlerBase, NSObject, {"handleKeyUIEvent:", noteCall, "v@:@"})

class HandlerHeir : public HandlerBase {
    NS_CLASS(HandlerHeir)
};
NS_CLASS_IMPLEMENTATION(HandlerHeir, HandlerBase)

class HandlerOwner : public NSObject {
    NS_CLASS(HandlerOwner)
};
NS_CLASS_IMPLEMENTATION(HandlerOwner, NSObject, {"handleKeyUIEvent:", noteCall, "v@:@"})

[[noreturn]] void exitWith(bool passed) { std::_Exit(passed ? 0 : 1); }

class KeyEventHookOrderDeathTest : public testing::Test {
protected:
    KeyEventHookOrderDeathTest() { testing::GTEST_FLAG(death_test_style) = "threadsafe"; }
};

} // namespace

// The handler that the application had by then leads a key to the editor.
TEST(KeyEventHook, IsInPlaceBeforeAnythingElseOfTheModuleIsSetUp) {
    const auto editor = JVNKeymapViewController::alloc()->initWithKeymapPath("/nowhere.plist");
    editor->setIndexPathOfCellToRemap(NSIndexPath::indexPathForRow_inSection(0, 0));

    const std::vector<id> arguments{UIKeyEvent::keyEvent(4, true)};
    handlerAtTheStart(*UIApplication::sharedApplication(), "handleKeyUIEvent:", arguments);

    EXPECT_FALSE(editor->indexPathOfCellToRemap()) << "the key is bound";
}

TEST_F(KeyEventHookOrderDeathTest, TheApplicationsHandlerGetsTheSameObjectSelectorAndEvent) {
    EXPECT_EXIT(
        {
            installKeyEventHookOnClass(HandlerOwner::classObject());
            const auto application = HandlerOwner::alloc();
            const auto event = UIKeyEvent::keyEvent(4, true);
            objc_msgSend(*application, "handleKeyUIEvent:", {event});
            exitWith(calls().size() == 1 && calls()[0].application == application.get() &&
                     calls()[0].command == SEL("handleKeyUIEvent:") && calls()[0].event == id(event));
        },
        testing::ExitedWithCode(0), "");
}

TEST_F(KeyEventHookOrderDeathTest, TheForwarderGetsTheSameObjectSelectorAndEvent) {
    EXPECT_EXIT(
        {
            installKeyEventHookOnClass(HandlerHeir::classObject());
            const auto application = HandlerHeir::alloc();
            const auto event = UIKeyEvent::keyEvent(4, true);
            objc_msgSend(*application, "handleKeyUIEvent:", {event});
            exitWith(calls().size() == 1 && calls()[0].application == application.get() &&
                     calls()[0].command == SEL("handleKeyUIEvent:") && calls()[0].event == id(event));
        },
        testing::ExitedWithCode(0), "");
}

TEST_F(KeyEventHookOrderDeathTest, TheForwarderCallsAHandlerThatTheSuperclassGotLater) {
    EXPECT_EXIT(
        {
            installKeyEventHookOnClass(HandlerHeir::classObject());
            static int later = 0;
            method_setImplementation(class_getInstanceMethod(HandlerBase::classObject(), "handleKeyUIEvent:"),
                                     [](NSObject&, SEL, std::span<const id>) {
                                         ++later;
                                         return id();
                                     });
            objc_msgSend(*HandlerHeir::alloc(), "handleKeyUIEvent:", {UIKeyEvent::keyEvent(4, true)});
            exitWith(later == 1 && calls().empty());
        },
        testing::ExitedWithCode(0), "");
}

TEST_F(KeyEventHookOrderDeathTest, TheForwarderAsksForTheKeyHandlerWhateverItIsCalledBy) {
    EXPECT_EXIT(
        {
            installKeyEventHookOnClass(HandlerHeir::classObject());
            const auto application = HandlerHeir::alloc();
            const std::vector<id> arguments{UIKeyEvent::keyEvent(4, true)};
            handler(HandlerHeir::classObject())(*application, "another:", arguments);
            exitWith(calls().size() == 1 && calls()[0].command == SEL("another:"));
        },
        testing::ExitedWithCode(0), "");
}

TEST_F(KeyEventHookOrderDeathTest, TheTypesAreThoseOfTheMethodFound) {
    EXPECT_EXIT(
        {
            installKeyEventHookOnClass(HandlerHeir::classObject());
            const Method added = class_getInstanceMethod(HandlerHeir::classObject(), "handleKeyUIEvent:");
            exitWith(added != class_getInstanceMethod(HandlerBase::classObject(), "handleKeyUIEvent:") &&
                     method_getTypeEncoding(added) == std::string("v@:@"));
        },
        testing::ExitedWithCode(0), "");
}

TEST_F(KeyEventHookOrderDeathTest, WithoutAnEditorTheEventGoesToTheApplicationAlone) {
    EXPECT_EXIT(
        {
            installKeyEventHookOnClass(HandlerOwner::classObject());
            const bool noEditor = !JVNKeymapViewController::activeKeymapController();
            objc_msgSend(*HandlerOwner::alloc(), "handleKeyUIEvent:", {UIKeyEvent::keyEvent(4, true)});
            exitWith(noEditor && calls().size() == 1);
        },
        testing::ExitedWithCode(0), "");
}
