#include "colourpicker/ZKBrightnessSlider.h"
#include "colourpicker/ZKColorMapView.h"
#include "colourpicker/ZKColorPickerView.h"
#include "kit/uikit/UIWindow.h"
#include "ledcolour/JVNColorPickerController.h"
#include "ledcolour/hex_colour.h"
#include "platform/runtime/method.h"
#include "platform/uikit/UINavigationController.h"
#include "tests/colourpicker/PickerScene.h"

#include <gtest/gtest.h>

namespace {

class Hearer : public NSObject, public JVNColorPickerControllerDelegate {
    NS_CLASS(Hearer)
public:
    bool respondsToSelector(SEL selector) const override { return NSObject::respondsToSelector(selector); }
    void colorPicker_didPickColor(JVNColorPickerController&, const std::shared_ptr<UIColor>& color) override {
        heard.push_back(color);
    }
    std::vector<std::shared_ptr<UIColor>> heard;
};
NS_CLASS_IMPLEMENTATION(Hearer, NSObject,
                        {"colorPicker:didPickColor:", [](NSObject&, SEL, std::span<const id>) { return id(); },
                         "v@:@@"})

// Does not answer to the delegate's selector.
class DeafHearer final : public Hearer {
    NS_CLASS(DeafHearer)
    bool respondsToSelector(SEL) const override { return false; }
};
NS_CLASS_IMPLEMENTATION(DeafHearer, Hearer)

// Takes the colour away from the screen before it reads it.
class HastyHearer final : public Hearer {
    NS_CLASS(HastyHearer)
    void colorPicker_didPickColor(JVNColorPickerController& screen, const std::shared_ptr<UIColor>& color) override {
        screen.setPickedColor(nullptr);
        Hearer::colorPicker_didPickColor(screen, color);
    }
};
NS_CLASS_IMPLEMENTATION(HastyHearer, Hearer)

class PickerScreen : public ::testing::Test {
protected:
    PickerScreen() {
        const auto first = UIViewController::alloc()->init();
        navigation = UINavigationController::alloc()->initWithRootViewController(first);
        window.scene.window()->setRootViewController(navigation);
        window.finger.settle();
        screen->setDelegate(hearer.get());
    }
    void push() {
        navigation->pushViewController_animated(screen, /*animated*/ false);
        window.finger.settle();
        const auto map = std::static_pointer_cast<ZKColorMapView>(picker().colorMapView().view());
        window.keep(map);
        window.waitForField(*map);
    }
    void pop() {
        navigation->popViewControllerAnimated(false);
        window.finger.settle();
    }
    ZKColorPickerView& picker() { return *screen->colorPicker(); }
    CGPoint onTile(double column, double row) {
        return picker().colorMapView().view()->convertPoint_toView({column * 16 + 8, row * 16 + 8}, nullptr);
    }
    CGPoint onTrack(double fraction) {
        const auto& slider = picker().brightnessSlider().view();
        return slider->convertPoint_toView({28 + (slider->bounds().size.width - 56) * fraction, 15}, nullptr);
    }

    // Outlives the screens, which tell it of their going when the window goes.
    std::shared_ptr<Hearer> hearer = Hearer::alloc();
    PickerScene window{{320, 480}, 2};
    std::shared_ptr<UINavigationController> navigation;
    std::shared_ptr<JVNColorPickerController> screen =
        JVNColorPickerController::alloc()->initWithColor(JVNColorForHexString("004EFD"));
};

} // namespace

TEST_F(PickerScreen, IsTitledAndShowsTheGivenColourWithoutHavingPickedIt) {
    EXPECT_EQ(screen->title(), "LED Color");
    EXPECT_NEAR(rgba(picker().color()).blue, 253 / 255.0, 1e-12);
    EXPECT_FALSE(screen->pickedColor());
}

TEST_F(PickerScreen, PickerFillsTheViewBelowTheBar) {
    push();
    ASSERT_EQ(navigation->navigationBar()->frame().size.height, 44);
    EXPECT_EQ(picker().frame(), (CGRect{{0, 44}, {320, 436}}));
    EXPECT_EQ(picker().autoresizingMask(), 18u);
    EXPECT_EQ(picker().superview(), screen->view());

    screen->view()->setFrame({{0, 0}, {400, 600}});
    EXPECT_EQ(picker().frame(), (CGRect{{0, 44}, {400, 556}}));
}

// Its field is drawn once: what a larger picker would show beside it is nothing that anybody should see.
TEST_F(PickerScreen, StaysAtAPhonesWidthInTheMiddleOfAWideWindow) {
    push();
    window.scene.resize({640, 916}, 2);
    window.finger.settle();
    EXPECT_EQ(picker().frame(), (CGRect{{0, 44}, {320, 436}}));
    EXPECT_EQ(picker().convertRect_toView(picker().bounds(), nullptr), (CGRect{{160, 44}, {320, 436}}));
}

TEST_F(PickerScreen, WithoutANavigationBarPickerFillsTheView) {
    screen->view()->setFrame({{0, 0}, {320, 480}});
    EXPECT_EQ(picker().frame(), (CGRect{{0, 0}, {320, 480}}));
}

TEST_F(PickerScreen, PickerStandsAtTheLeftEdgeWhereverTheScreensViewStands) {
    screen->setView(UIView::alloc()->initWithFrame({{30, 40}, {300, 400}}));

    screen->viewDidLoad();

    EXPECT_EQ(picker().frame(), (CGRect{{0, 0}, {300, 400}}));
}

TEST_F(PickerScreen, LeavingUntouchedTellsNobody) {
    push();
    pop();
    EXPECT_TRUE(hearer->heard.empty());
    EXPECT_FALSE(screen->pickedColor());
}

TEST_F(PickerScreen, DragOnTheMapAndLeavingTellTheSameColourTwice) {
    push();
    window.finger.drag(onTile(1, 0), onTile(5, 3));
    ASSERT_EQ(hearer->heard.size(), 1u);
    EXPECT_EQ(hearer->heard[0], screen->pickedColor());

    pop();

    ASSERT_EQ(hearer->heard.size(), 2u);
    EXPECT_TRUE(hearer->heard[0]->isEqual(*hearer->heard[1]));
    EXPECT_NEAR(hsba(hearer->heard[1]).hue, 5.0 / 20, 1e-12);
    EXPECT_EQ(rgba(hearer->heard[1]).alpha, 1);
}

TEST_F(PickerScreen, TapTellsTheColourFromBeforeItAndSoDoesLeaving) {
    push();
    window.finger.tap(onTile(5, 3));
    pop();
    ASSERT_EQ(hearer->heard.size(), 2u);
    EXPECT_EQ(JVNStringColorForUIColor(hearer->heard[0]), "004efd");
    EXPECT_EQ(JVNStringColorForUIColor(hearer->heard[1]), "004efd");
}

TEST_F(PickerScreen, SliderDragAloneTellsNothingNotEvenOnLeaving) {
    push();
    window.finger.drag(onTrack(0), onTrack(0.5));
    pop();
    EXPECT_TRUE(hearer->heard.empty());
}

TEST_F(PickerScreen, TapAfterASliderDragTellsTheDraggedBrightness) {
    push();
    window.finger.drag(onTrack(0), onTrack(0.5));
    window.finger.tap(onTile(5, 3));
    ASSERT_EQ(hearer->heard.size(), 1u);
    EXPECT_NEAR(hsba(hearer->heard[0]).brightness, 0.7, 1e-3);
}

TEST_F(PickerScreen, DelegateThatDoesNotRespondIsNeverCalled) {
    const auto deaf = DeafHearer::alloc();
    screen->setDelegate(deaf.get());
    push();
    window.finger.drag(onTile(1, 0), onTile(5, 3));
    pop();
    EXPECT_TRUE(deaf->heard.empty());
    EXPECT_TRUE(screen->pickedColor());
}

TEST_F(PickerScreen, DelegateMaySetAnotherColourAndStillReadTheOneItIsTold) {
    const auto hasty = HastyHearer::alloc();
    screen->setDelegate(hasty.get());
    push();
    window.finger.drag(onTile(1, 0), onTile(5, 3));
    ASSERT_EQ(hasty->heard.size(), 1u);
    EXPECT_TRUE(hasty->heard[0]);
    pop();
    EXPECT_EQ(hasty->heard.size(), 1u) << "nothing is picked any more";
}

TEST_F(PickerScreen, WithoutADelegateNothingFails) {
    screen->setDelegate(nullptr);
    push();
    window.finger.drag(onTile(1, 0), onTile(5, 3));
    pop();
    EXPECT_TRUE(screen->pickedColor());
}
