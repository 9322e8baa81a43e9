// The picker's screen by itself: what it hears of its picker, and when it tells whom.

#include "colourpicker/ZKColorMapView.h"
#include "colourpicker/ZKColorPickerView.h"
#include "kit/uikit/UIWindow.h"
#include "ledcolour/JVNColorPickerController.h"
#include "platform/runtime/method.h"
#include "platform/uikit/UINavigationController.h"
#include "tests/colourpicker/PickerScene.h"

#include <gtest/gtest.h>

namespace {

class Listener final : public NSObject, public JVNColorPickerControllerDelegate {
    NS_CLASS(Listener)
    bool respondsToSelector(SEL selector) const override { return NSObject::respondsToSelector(selector); }
    void colorPicker_didPickColor(JVNColorPickerController& picker, const std::shared_ptr<UIColor>& color) override {
        from = &picker;
        heard.push_back(color);
    }
    const JVNColorPickerController* from = nullptr;
    std::vector<std::shared_ptr<UIColor>> heard;
};
NS_CLASS_IMPLEMENTATION(Listener, NSObject,
                        {"colorPicker:didPickColor:", [](NSObject&, SEL, std::span<const id>) { return id(); },
                         "v@:@@"})

class PickerScreenDetails : public ::testing::Test {
protected:
    PickerScreenDetails() {
        navigation = UINavigationController::alloc()->initWithRootViewController(UIViewController::alloc()->init());
        window.scene.window()->setRootViewController(navigation);
        screen->setDelegate(listener.get());
    }
    ~PickerScreenDetails() override {
        if (screen) screen->setDelegate(nullptr);
    }
    void push(const std::shared_ptr<UIViewController>& controller) {
        navigation->pushViewController_animated(controller, /*animated*/ false);
        window.finger.settle();
        const auto& picker = screen->colorPicker();
        if (picker->superview()) window.keep(std::static_pointer_cast<ZKColorMapView>(picker->colorMapView().view()));
    }
    void pop() {
        navigation->popViewControllerAnimated(false);
        window.finger.settle();
    }

    std::shared_ptr<Listener> listener = Listener::alloc();
    PickerScene window{{320, 480}, 2};
    std::shared_ptr<UINavigationController> navigation;
    std::shared_ptr<JVNColorPickerController> screen =
        JVNColorPickerController::alloc()->initWithColor(rgb(0, 0.5, 1, 0.25));
};

} // namespace

TEST_F(PickerScreenDetails, HearsTheValueOfItsPickerAndNothingElseOfIt) {
    screen->colorPicker()->sendActionsForControlEvents(UIControlEventEditingDidEnd);
    EXPECT_FALSE(screen->pickedColor());
    screen->colorPicker()->sendActionsForControlEvents(UIControlEventValueChanged);
    EXPECT_TRUE(screen->pickedColor());
}

TEST_F(PickerScreenDetails, TellsItselfAndAFreshOpaqueColourOfThePicker) {
    screen->colorPicker()->sendActionsForControlEvents(UIControlEventValueChanged);
    ASSERT_EQ(listener->heard.size(), 1u);
    EXPECT_EQ(listener->from, screen.get());
    EXPECT_EQ(rgba(listener->heard[0]).alpha, 1);
    EXPECT_NEAR(rgba(listener->heard[0]).green, 0.5, 1e-12);
    EXPECT_EQ(listener->heard[0], screen->pickedColor());
}

TEST_F(PickerScreenDetails, TakesTheColourOfTheSenderWhicheverPickerItIs) {
    const auto other = ZKColorPickerView::alloc()->init();
    other->setColor(rgb(1, 0, 0));
    objc_msgSend(*screen, "colorPicked:", {id(other)});
    ASSERT_EQ(listener->heard.size(), 1u);
    EXPECT_EQ(rgba(listener->heard[0]).red, 1);
}

TEST_F(PickerScreenDetails, TellsTheSameColourObjectEachTimeItGoesAway) {
    push(screen);
    screen->colorPicker()->sendActionsForControlEvents(UIControlEventValueChanged);
    push(UIViewController::alloc()->init());
    ASSERT_EQ(listener->heard.size(), 2u);
    pop();
    EXPECT_EQ(listener->heard.size(), 2u) << "coming back tells nothing";
    pop();
    ASSERT_EQ(listener->heard.size(), 3u);
    for (const auto& color : listener->heard) EXPECT_EQ(color, screen->pickedColor());
}

TEST_F(PickerScreenDetails, ColourSetAsPickedIsToldOnLeaving) {
    const auto color = rgb(1, 0, 0);
    push(screen);
    screen->setPickedColor(color);
    EXPECT_TRUE(listener->heard.empty());
    pop();
    ASSERT_EQ(listener->heard.size(), 1u);
    EXPECT_EQ(listener->heard[0], color);
}

TEST_F(PickerScreenDetails, DelegateOfTheMomentIsTold) {
    const auto other = Listener::alloc();
    push(screen);
    screen->colorPicker()->sendActionsForControlEvents(UIControlEventValueChanged);
    screen->setDelegate(other.get());
    pop();
    EXPECT_EQ(listener->heard.size(), 1u);
    EXPECT_EQ(other->heard.size(), 1u);
    screen->setDelegate(nullptr);
}

TEST_F(PickerScreenDetails, LivesUntilItIsPopped) {
    push(screen);
    const std::weak_ptr<JVNColorPickerController> weak = screen;
    const std::weak_ptr<ZKColorPickerView> picker = screen->colorPicker();
    const auto map = std::static_pointer_cast<ZKColorMapView>(screen->colorPicker()->colorMapView().view());
    ASSERT_TRUE(window.waitForField(*map));
    screen->setDelegate(nullptr);
    screen = nullptr;
    EXPECT_FALSE(weak.expired());
    pop();
    EXPECT_TRUE(weak.expired());
    EXPECT_TRUE(picker.expired());
}

TEST_F(PickerScreenDetails, MadeWithoutAColourIsBlack) {
    const auto made = JVNColorPickerController::alloc()->initWithColor(nullptr);
    EXPECT_EQ(hsba(made->colorPicker()->color()).brightness, 0);
}

TEST_F(PickerScreenDetails, PickerIsTheOnlyThingOnTheScreen) {
    push(screen);
    ASSERT_EQ(screen->view()->subviews().size(), 1u);
    EXPECT_EQ(screen->view()->subviews()[0], screen->colorPicker());
}
