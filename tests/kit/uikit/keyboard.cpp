#include "kit/dispatch/main_queue.h"
#include "kit/uikit/url_opener.h"
#include "platform/foundation/NSNotificationCenter.h"
#include "tests/kit/uikit/KeyboardTest.h"

NS_CLASS_IMPLEMENTATION(KeyView, UIView)

namespace {

class BackgroundListener final : public NSObject {
    NS_CLASS(BackgroundListener)
public:
    void heard() { ++count; }
    int count = 0;
};
NS_CLASS_IMPLEMENTATION(BackgroundListener, NSObject, method<&BackgroundListener::heard>("heard"))

} // namespace

TEST_F(Keyboard, ActivationComesWithTheReleaseAndByTheMainQueue) {
    const auto view = add<KeyView>({{0, 0}, {50, 44}});
    scene.window()->setFocusedView(view);

    touches.keyDown(hid::enter);
    touches.keyDown(hid::enter, 0, /*isRepeat=*/true);
    seat::drainMainQueue();
    EXPECT_EQ(view->log, "");
    touches.keyUp(hid::enter);
    EXPECT_EQ(view->log, "");
    seat::drainMainQueue();
    EXPECT_EQ(view->log, "activated ");

    touches.key(hid::space);
    EXPECT_EQ(view->log, "activated activated ");
}

TEST_F(Keyboard, ReleaseOfAKeyThatWentDownElsewhereActivatesNothing) {
    const auto view = add<KeyView>({{0, 0}, {50, 44}});
    const auto other = add<KeyView>({{0, 50}, {50, 44}});
    scene.window()->setFocusedView(view);

    touches.keyUp(hid::enter);
    seat::drainMainQueue();
    EXPECT_EQ(view->log, "");

    touches.keyDown(hid::enter);
    scene.window()->setFocusedView(other);
    touches.keyUp(hid::enter);
    seat::drainMainQueue();
    EXPECT_EQ(view->log + other->log, "");

    touches.keyDown(hid::space);
    touches.keyUp(hid::enter);
    seat::drainMainQueue();
    EXPECT_EQ(other->log, "") << "another key went down here";
}

TEST_F(Keyboard, EscapeThatIsHeldDownEscapesOnce) {
    const auto view = add<KeyView>({{0, 0}, {50, 44}});
    view->takesEscape = true;
    scene.window()->setFocusedView(view);

    touches.keyDown(hid::escape);
    for (int i = 0; i < 3; ++i) touches.keyDown(hid::escape, 0, /*isRepeat=*/true);
    touches.keyUp(hid::escape);

    EXPECT_EQ(view->log, "escaped ");
}

TEST_F(Keyboard, ViewThatIsGoneBeforeItsTurnIsNotActivated) {
    auto view = add<KeyView>({{0, 0}, {50, 44}});
    scene.window()->setFocusedView(view);
    touches.keyDown(hid::space);
    touches.keyUp(hid::space);

    view->removeFromSuperview();
    seat::drainMainQueue();

    EXPECT_EQ(view->log, "");
}

TEST_F(Keyboard, ArrowsStepASliderAndShiftMakesTheStepLarge) {
    const auto before = add<KeyView>({{0, 0}, {50, 44}});
    const auto slider = add<KeyView>({{0, 50}, {200, 44}});
    slider->role = UIAccessibilityRole::Slider;
    scene.window()->setFocusedView(slider);

    for (const long key : {hid::left, hid::right, hid::up, hid::down}) touches.key(key);
    touches.key(hid::right, UIKeyEvent::Shift);

    EXPECT_EQ(slider->log, "left right up down right:large ");
    EXPECT_EQ(focused(), slider);
    touches.key(hid::tab, UIKeyEvent::Shift);
    EXPECT_EQ(focused(), before);
}

TEST_F(Keyboard, EscapeGoesUpFromTheFocusAndToTheModalViewFirst) {
    const auto outer = add<KeyView>({{0, 0}, {320, 200}});
    outer->focusable = false;
    outer->takesEscape = true;
    const auto inner = add<KeyView>({{0, 0}, {50, 44}}, outer);
    scene.window()->setFocusedView(inner);
    touches.key(hid::escape);
    EXPECT_EQ(outer->log, "escaped ");

    const auto modal = add<KeyView>({{50, 50}, {200, 200}});
    modal->focusable = false;
    modal->takesEscape = true;
    modal->setAccessibilityViewIsModal(true);
    touches.key(hid::escape);
    EXPECT_EQ(modal->log, "escaped ");
    EXPECT_EQ(outer->log, "escaped ");
}

TEST_F(Keyboard, ShortcutsOfTheDesktopAreNotTaken) {
    const auto view = add<KeyView>({{0, 0}, {50, 44}});

    touches.key(hid::tab, UIKeyEvent::Alt);
    touches.key(hid::tab, UIKeyEvent::Control);

    EXPECT_EQ(focused(), nullptr);
    EXPECT_NE(focused(), view);
}

TEST_F(Keyboard, PageAndEndKeysScroll) {
    const auto scroll = add<UIScrollView>({{0, 0}, {320, 480}});
    scroll->setContentSize({320, 2000});
    const auto press = [&](long key) {
        touches.key(key);
        touches.settle();
        return scroll->contentOffset().y;
    };

    EXPECT_EQ(press(hid::pageDown), 432);
    EXPECT_EQ(press(hid::end), 1520);
    EXPECT_EQ(press(hid::pageUp), 1520 - 432);
    EXPECT_EQ(press(hid::home), 0);
    EXPECT_EQ(press(hid::pageUp), 0);
}

TEST_F(Keyboard, HandlerCanBeReplacedByTheRuntime) {
    const Method method = class_getInstanceMethod(objc_getClass("UIApplication"), "handleKeyUIEvent:");
    ASSERT_NE(method, nullptr);
    static int heard;
    heard = 0;
    const IMP former = method_setImplementation(method, [](NSObject&, SEL, std::span<const id>) {
        ++heard;
        return id();
    });
    const auto view = add<KeyView>({{10, 10}, {50, 44}});

    touches.key(hid::tab);
    EXPECT_EQ(heard, 2);
    EXPECT_EQ(focused(), nullptr);
    method_setImplementation(method, former);
    touches.key(hid::tab);
    EXPECT_EQ(focused(), view);
}

TEST_F(Keyboard, NavigationFollowsTheSymbolWhereverTheKeyIs) {
    constexpr long letter = 4;
    const auto press = [](long place, long symbol) {
        for (const bool isDown : {true, false})
            seat::sendKeyEvent(UIKeyEvent::keyEvent(place, isDown, /*isRepeat=*/false, /*modifiers=*/0, symbol));
        seat::drainMainQueue();
    };
    const auto view = add<KeyView>({{10, 10}, {50, 44}});

    press(hid::tab, 0);
    EXPECT_EQ(focused(), nullptr);
    press(letter, hid::tab);
    EXPECT_EQ(focused(), view);
    press(hid::enter, 0);
    press(hid::space, 0);
    EXPECT_EQ(view->log, "");
    press(letter, hid::enter);
    EXPECT_EQ(view->log, "activated ");
}

TEST_F(Keyboard, AKeyWithoutAPlaceNavigatesAndIsNothingToAHook) {
    const Method method = class_getInstanceMethod(objc_getClass("UIApplication"), "handleKeyUIEvent:");
    static int heard;
    heard = 0;
    const IMP former = method_setImplementation(method, [](NSObject&, SEL, std::span<const id>) {
        ++heard;
        return id();
    });
    const auto view = add<KeyView>({{10, 10}, {50, 44}});

    seat::sendKeyEvent(UIKeyEvent::keyEvent(0, /*isKeyDown=*/true, /*isRepeat=*/false, /*modifiers=*/0, hid::tab));
    method_setImplementation(method, former);

    EXPECT_EQ(heard, 0);
    EXPECT_EQ(focused(), view);
}

TEST_F(Keyboard, HandlerIsTheApplicationsOwnMethod) {
    const Class application = objc_getClass("UIApplication");
    EXPECT_FALSE(class_addMethod(
        application, "handleKeyUIEvent:", [](NSObject&, SEL, std::span<const id>) { return id(); }, "v@:@"));
    EXPECT_EQ(class_getInstanceMethod(class_getSuperclass(application), "handleKeyUIEvent:"), nullptr);
}

TEST_F(Keyboard, GoingToTheBackgroundIsAnnounced) {
    const auto listener = BackgroundListener::alloc();
    NSNotificationCenter::defaultCenter()->addObserver_selector_name_object(
        listener, "heard", UIApplicationDidEnterBackgroundNotification, nullptr);

    seat::applicationDidEnterBackground();

    EXPECT_EQ(listener->count, 1);
}

TEST_F(Keyboard, AddressesGoToWhoeverOpensThem) {
    std::string opened;
    seat::setURLOpener([&](const std::string& url) {
        opened = url;
        return true;
    });
    EXPECT_TRUE(UIApplication::sharedApplication()->openURL("https://quorrel.example/x"));
    EXPECT_EQ(opened, "https://quorrel.example/x");

    seat::setURLOpener(nullptr);
    EXPECT_FALSE(UIApplication::sharedApplication()->openURL("https://quorrel.example/x"));
}
