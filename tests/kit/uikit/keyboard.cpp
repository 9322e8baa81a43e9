#include "kit/dispatch/main_queue.h"
#include "kit/uikit/WindowInternals.h"
#include "kit/uikit/application.h"
#include "kit/uikit/focus_order.h"
#include "kit/uikit/hid_keys.h"
#include "kit/uikit/url_opener.h"
#include "platform/foundation/NSNotificationCenter.h"
#include "tests/kit/uikit/SceneTest.h"

namespace {

namespace hid = seat::hid;

// A view that can be focused, and writes down what keys do to it.
class KeyView : public UIView {
    NS_CLASS(KeyView)
public:
    std::shared_ptr<KeyView> initWithFrame(CGRect frame) { return UIView::initWithFrame(frame) ? self(this) : nullptr; }
    bool canBecomeFocused() const override { return focusable; }
    UIAccessibilityRole accessibilityRole() const override { return role; }
    bool accessibilityActivate() override {
        log += "activated ";
        return true;
    }
    bool accessibilityStep(UIAccessibilityDirection direction, UIAccessibilityStep step) override {
        const char* const names[] = {"left", "right", "up", "down"};
        log += std::string(names[static_cast<int>(direction)]) + (step == UIAccessibilityStep::Large ? ":large " : " ");
        return true;
    }
    bool accessibilityPerformEscape() override {
        if (!takesEscape) return UIView::accessibilityPerformEscape();
        log += "escaped ";
        return true;
    }
    std::shared_ptr<UIView> focusNeighbour(const UIView&, bool forward) override {
        return forward ? neighbour.lock() : nullptr;
    }

    bool focusable = true;
    bool takesEscape = false;
    UIAccessibilityRole role = UIAccessibilityRole::Button;
    std::weak_ptr<UIView> neighbour;
    std::string log;
};
NS_CLASS_IMPLEMENTATION(KeyView, UIView)

class BackgroundListener final : public NSObject {
    NS_CLASS(BackgroundListener)
public:
    void heard() { ++count; }
    int count = 0;
};
NS_CLASS_IMPLEMENTATION(BackgroundListener, NSObject, method<&BackgroundListener::heard>("heard"))

class Keyboard : public SceneTest {
protected:
    std::shared_ptr<UIView> focused() const { return scene.window()->focusedView(); }
};

} // namespace

TEST_F(Keyboard, TabGoesRoundInReadingOrder) {
    const auto bottom = add<KeyView>({{0, 200}, {100, 40}});
    const auto right = add<KeyView>({{200, 5}, {50, 30}});
    const auto left = add<KeyView>({{0, 0}, {50, 44}});
    const auto box = add({{0, 100}, {320, 50}});
    const auto inBox = add<KeyView>({{10, 0}, {50, 44}}, box);

    std::vector<std::shared_ptr<UIView>> order;
    for (int i = 0; i < 5; ++i) {
        touches.key(hid::tab);
        order.push_back(focused());
    }
    EXPECT_EQ(order, (std::vector<std::shared_ptr<UIView>>{left, right, inBox, bottom, left}));

    touches.key(hid::tab, UIKeyEvent::Shift);
    EXPECT_EQ(focused(), bottom);
    touches.key(hid::up);
    EXPECT_EQ(focused(), inBox);
    touches.key(hid::down);
    EXPECT_EQ(focused(), bottom);
}

TEST_F(Keyboard, HiddenAndPassiveViewsAreSkipped) {
    const auto hidden = add<KeyView>({{0, 0}, {50, 44}});
    hidden->setHidden(true);
    const auto box = add({{0, 50}, {320, 50}});
    add<KeyView>({{0, 0}, {50, 44}}, box);
    box->setUserInteractionEnabled(false);
    const auto disabled = add<UISwitch>({{0, 100}, {51, 31}});
    disabled->setEnabled(false);
    const auto usable = add<UISwitch>({{0, 200}, {51, 31}});

    touches.key(hid::tab);

    EXPECT_EQ(focused(), usable);
    touches.key(hid::tab);
    EXPECT_EQ(focused(), usable);
}

TEST_F(Keyboard, ContainerNamesTheNeighbourThatIsOffScreen) {
    const auto container = add<KeyView>({{0, 0}, {320, 200}});
    container->focusable = false;
    const auto row = add<KeyView>({{0, 0}, {320, 44}}, container);
    const auto later = add<KeyView>({{0, 100}, {320, 44}}, container);
    const auto farther = add<KeyView>({{0, 150}, {320, 44}}, container);
    container->neighbour = farther;
    scene.window()->setFocusedView(row);

    touches.key(hid::tab);
    EXPECT_EQ(focused(), farther);
    touches.key(hid::tab, UIKeyEvent::Shift);
    EXPECT_EQ(focused(), later);
}

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

TEST_F(Keyboard, ModalViewConfinesTheFocus) {
    const auto below = add<KeyView>({{0, 0}, {50, 44}});
    scene.window()->setFocusedView(below);
    const auto modal = add({{50, 50}, {200, 200}});
    modal->setAccessibilityViewIsModal(true);
    const auto inside = add<KeyView>({{0, 0}, {50, 44}}, modal);

    touches.key(hid::enter);
    EXPECT_EQ(below->log, "");
    touches.key(hid::tab);
    EXPECT_EQ(focused(), inside);
    touches.key(hid::tab);
    EXPECT_EQ(focused(), inside);

    modal->removeFromSuperview();
    EXPECT_EQ(focused(), below);
    touches.key(hid::enter);
    EXPECT_EQ(below->log, "activated ");
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

TEST_F(Keyboard, FocusedViewIsScrolledIntoView) {
    const auto scroll = add<UIScrollView>({{0, 0}, {320, 480}});
    scroll->setContentSize({320, 2000});
    add<KeyView>({{0, 0}, {320, 44}}, scroll);
    const auto far = add<KeyView>({{0, 1000}, {320, 44}}, scroll);

    touches.key(hid::tab);
    touches.key(hid::tab);

    EXPECT_EQ(focused(), far);
    EXPECT_EQ(scroll->contentOffset().y, 1044 + 12 - 480);
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

TEST_F(Keyboard, RingShowsForKeysAndNotForFingers) {
    const auto view = add<KeyView>({{10, 10}, {50, 44}});
    scene.prepareFrame();
    const auto layers = [&] { return scene.window()->layer()->sublayers().size(); };
    const auto plain = layers();

    touches.key(hid::tab);
    EXPECT_EQ(layers(), plain + 1);
    EXPECT_EQ(scene.window()->layer()->sublayers().back()->frame(), CGRectMake(6, 6, 58, 52));

    touches.tap({200, 200});
    EXPECT_EQ(layers(), plain);
    EXPECT_EQ(focused(), view);
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

TEST_F(Keyboard, ScreenThatComesBackHasItsFocusAgain) {
    const auto below = add({{0, 0}, {320, 480}});
    const auto row = add<KeyView>({{0, 0}, {320, 44}}, below);
    touches.key(hid::tab);
    below->removeFromSuperview();
    const auto above = add<KeyView>({{0, 0}, {320, 44}});
    EXPECT_EQ(focused(), nullptr);
    touches.key(hid::tab);
    EXPECT_EQ(focused(), above);

    above->removeFromSuperview();
    scene.window()->addSubview(below);

    EXPECT_EQ(focused(), row);
    scene.window()->setFocusedView(nullptr);
    EXPECT_EQ(focused(), nullptr);
}

TEST_F(Keyboard, ForgottenFocusDoesNotComeBack) {
    const auto cell = add({{0, 0}, {320, 44}});
    const auto inner = add<KeyView>({{0, 0}, {51, 31}}, cell);
    scene.window()->setFocusedView(inner);

    WindowInternals::forgetFocus(*scene.window(), *cell);

    EXPECT_EQ(focused(), nullptr);
}

TEST_F(Keyboard, WhatIsCoveredIsOutOfReach) {
    const auto page = add<UIScrollView>({{0, 44}, {320, 436}});
    page->setContentSize({320, 1000});
    const auto row = add<KeyView>({{0, 0}, {320, 44}}, page);
    const auto far = add<KeyView>({{0, 800}, {320, 44}}, page);
    const auto back = add<KeyView>({{0, 0}, {100, 44}});
    scene.window()->setFocusedView(row);

    const auto cover = add(page->bounds(), page);
    touches.key(hid::enter);
    EXPECT_EQ(row->log, "");
    touches.key(hid::tab);
    EXPECT_EQ(focused(), back);
    touches.key(hid::tab);
    EXPECT_EQ(focused(), back);

    cover->removeFromSuperview();
    touches.key(hid::tab);
    touches.key(hid::tab);
    EXPECT_EQ(focused(), far);
}

TEST_F(Keyboard, WhatABarCoversInPartIsWithinReach) {
    const auto page = add<UIScrollView>({{0, 0}, {320, 480}});
    page->setContentSize({320, 1000});
    const auto row = add<KeyView>({{0, 0}, {320, 44}}, page);
    add({{0, 0}, {320, 30}});

    touches.key(hid::tab);

    EXPECT_EQ(focused(), row);
}
