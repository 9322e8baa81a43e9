#include "colourpicker/ZKBrightnessCursor.h"
#include "colourpicker/ZKBrightnessSlider.h"
#include "colourpicker/ZKColorCursor.h"
#include "colourpicker/ZKColorMapView.h"
#include "colourpicker/ZKColorPickerView.h"
#include "kit/quartz/geometry.h"
#include "kit/uikit/AccessibilityTree.h"
#include "kit/uikit/focus_ring.h"
#include "kit/uikit/hid_keys.h"
#include "platform/uikit/UIColor.h"
#include "platform/uikit/UIKeyEvent.h"
#include "platform/uikit/UILabel.h"
#include "tests/colourpicker/PickerScene.h"

#include <gtest/gtest.h>
#include <set>

namespace {

using Direction = UIAccessibilityDirection;
using Step = UIAccessibilityStep;

class PickerAccessibility : public ::testing::Test {
protected:
    PickerAccessibility() {
        picker->setColor(hsb(0.5, 1, 1)); // tile (10, 0)
        window.show(picker, {{0, 0}, {320, 460}});
        map = std::static_pointer_cast<ZKColorMapView>(picker->colorMapView().view());
        slider = std::static_pointer_cast<ZKBrightnessSlider>(picker->brightnessSlider().view());
        window.keep(map);
        window.waitForField(*map);
        mapEvents = EventLog::listeningTo(*map);
        sliderEvents = EventLog::listeningTo(*slider);
        reports = EventLog::listeningTo(*picker);
    }
    const seat::AccessibilityNode* node(UIAccessibilityRole role) {
        window.scene.prepareFrame();
        auto& tree = window.scene.accessibility();
        tree.update();
        for (const auto& [identity, node] : tree.nodes())
            if (node.role == role) return &node;
        return nullptr;
    }
    void expectTile(double column, double row) {
        EXPECT_NEAR(hsba(map->color()).hue, column / 20, 1e-12);
        EXPECT_NEAR(hsba(map->color()).saturation, 1 - float09 * row / 21, 1e-12);
    }
    void press(long key, unsigned modifiers = 0) { window.finger.key(key, modifiers); }

    PickerScene window{{320, 460}, 2};
    std::shared_ptr<ZKColorPickerView> picker = ZKColorPickerView::alloc()->init();
    std::shared_ptr<ZKColorMapView> map;
    std::shared_ptr<ZKBrightnessSlider> slider;
    std::shared_ptr<EventLog> mapEvents, sliderEvents, reports;
};

} // namespace

TEST_F(PickerAccessibility, MapIsACanvasThatTellsHueSaturationAndBrightness) {
    picker->setColor(rgb(0, 78 / 255.0, 253 / 255.0));
    const auto* const canvas = node(UIAccessibilityRole::Canvas);
    ASSERT_TRUE(canvas);
    EXPECT_EQ(canvas->name, "Hue and saturation");
    EXPECT_EQ(canvas->value, "Hue 222 degrees, saturation 100 percent, brightness 99 percent");
    EXPECT_TRUE(canvas->isFocusable);
}

TEST_F(PickerAccessibility, SliderIsASliderInPercent) {
    picker->setColor(hsb(0.5, 1, 0.75));
    const auto* const bar = node(UIAccessibilityRole::Slider);
    ASSERT_TRUE(bar);
    EXPECT_EQ(bar->name, "Brightness");
    EXPECT_EQ(bar->value, "75 percent");
    EXPECT_TRUE(bar->isFocusable);
    ASSERT_TRUE(bar->range);
    EXPECT_EQ(bar->range->minimum, 40);
    EXPECT_EQ(bar->range->maximum, 100);
    EXPECT_EQ(bar->range->current, 75);
    EXPECT_EQ(bar->range->step, 1);
}

TEST_F(PickerAccessibility, SliderIsWhereItsBarIsAndItsRingGoesRoundTheBar) {
    const auto* const bar = node(UIAccessibilityRole::Slider);
    ASSERT_TRUE(bar);
    const CGRect shown = slider->convertRect_toView(slider->alignmentRectForFrame(slider->bounds()), nullptr);
    EXPECT_EQ(bar->extent, shown);
    EXPECT_LT(CGRectGetMaxX(bar->extent), 320);

    window.scene.window()->setFocusedView(map);
    press(seat::hid::tab, UIKeyEvent::Shift);
    ASSERT_EQ(window.scene.window()->focusedView(), slider);
    const CGRect ring = seat::focusRingRect(*slider);
    EXPECT_TRUE(CGRectEqualToRect(CGRectIntersection(ring, shown), shown));
    EXPECT_LT(CGRectGetMaxX(ring), 320);
    EXPECT_GT(CGRectGetMinX(ring), CGRectGetMaxX(picker->colorInfoView().view()->frame()));
}

TEST_F(PickerAccessibility, HiddenPercentageIsNotRead) {
    ASSERT_TRUE(node(UIAccessibilityRole::Group));
    std::vector<std::string> texts;
    for (const auto& [identity, node] : window.scene.accessibility().nodes())
        if (node.role == UIAccessibilityRole::StaticText) texts.push_back(node.name);
    EXPECT_EQ(texts, std::vector<std::string>{"#00ffff"});
}

TEST_F(PickerAccessibility, SmallStepsGoToTheNextTile) {
    EXPECT_TRUE(map->accessibilityStep(Direction::Right, Step::Small));
    expectTile(11, 0);
    EXPECT_TRUE(map->accessibilityStep(Direction::Down, Step::Small));
    expectTile(11, 1);
    EXPECT_TRUE(map->accessibilityStep(Direction::Left, Step::Small));
    expectTile(10, 1);
    EXPECT_TRUE(map->accessibilityStep(Direction::Up, Step::Small));
    expectTile(10, 0);
}

TEST_F(PickerAccessibility, LargeStepsGoOverATenthOfTheField) {
    map->accessibilityStep(Direction::Right, Step::Large);
    expectTile(12, 0);
    map->accessibilityStep(Direction::Down, Step::Large);
    expectTile(12, 2);
}

TEST_F(PickerAccessibility, StepsEndAtTheFieldsEdgesWithoutAWord) {
    EXPECT_FALSE(map->accessibilityStep(Direction::Up, Step::Small));
    for (int i = 0; i < 4; ++i) EXPECT_TRUE(map->accessibilityStep(Direction::Right, Step::Large));
    EXPECT_TRUE(map->accessibilityStep(Direction::Right, Step::Large));
    expectTile(19, 0);
    mapEvents->take();
    EXPECT_FALSE(map->accessibilityStep(Direction::Right, Step::Large));
    EXPECT_EQ(mapEvents->take(), "");
}

TEST_F(PickerAccessibility, StepOnTheMapIsOneDrag) {
    map->accessibilityStep(Direction::Right, Step::Small);

    EXPECT_EQ(mapEvents->take(), "value editing-end value");
    EXPECT_FALSE(map->colorCursor()->editing());
}

TEST_F(PickerAccessibility, WhatAStepShowsIsWhatIsReported) {
    std::vector<double> hues;
    for (int i = 0; i < 3; ++i) {
        map->accessibilityStep(Direction::Right, Step::Small);
        EXPECT_EQ(reports->take(), "value");
        hues.push_back(hsba(picker->color()).hue);
    }
    EXPECT_NEAR(hues[2], 13.0 / 20, 1e-12);
}

TEST_F(PickerAccessibility, StepFromAColourOutsideTheFieldBeginsAtItsEdge) {
    picker->setColor(UIColor::whiteColor());
    EXPECT_TRUE(map->accessibilityStep(Direction::Up, Step::Small));
    expectTile(0, 20);
}

TEST_F(PickerAccessibility, SliderStepsByOnePercentAndTen) {
    EXPECT_TRUE(slider->accessibilityStep(Direction::Right, Step::Small));
    EXPECT_NEAR(slider->brightness()->doubleValue(), 0.99, 1e-7);
    EXPECT_TRUE(slider->accessibilityStep(Direction::Down, Step::Large));
    EXPECT_NEAR(slider->brightness()->doubleValue(), 0.89, 1e-7);
    EXPECT_TRUE(slider->accessibilityStep(Direction::Left, Step::Small));
    EXPECT_NEAR(slider->brightness()->doubleValue(), 0.90, 1e-7);
    EXPECT_TRUE(slider->accessibilityStep(Direction::Up, Step::Large));
    EXPECT_NEAR(slider->brightness()->doubleValue(), 1, 1e-12);
    EXPECT_FALSE(slider->accessibilityStep(Direction::Up, Step::Small));
}

// The number above the cursor.
TEST_F(PickerAccessibility, WhatIsSaidIsWhatIsShown) {
    const double left = CGRectGetMinX(slider->frame()) + 28;
    const double width = slider->bounds().size.width - 56;
    const double y = CGRectGetMidY(slider->frame());
    std::set<std::string> seen;
    for (int i = 1; i < 60; ++i) {
        window.finger.tap(CGPoint{left + width * i / 60, y});
        const std::string label = slider->brightnessCursor()->brightnessLabel()->text();
        const auto* const bar = node(UIAccessibilityRole::Slider);
        ASSERT_TRUE(bar);
        const std::string said = bar->value;
        EXPECT_EQ(said, label.substr(0, label.size() - 1) + " percent");
        EXPECT_EQ(std::to_string(int(bar->range->current)) + "%", label);
        const auto* const canvas = node(UIAccessibilityRole::Canvas);
        ASSERT_TRUE(canvas);
        EXPECT_TRUE(canvas->value.ends_with("brightness " + said)) << canvas->value;
        seen.insert(label);
    }
    EXPECT_GT(seen.size(), 40u);
}

TEST_F(PickerAccessibility, TheMiddleOfTheSliderSaysWhatItShows) {
    slider->accessibilitySetValue(40);
    window.finger.tap(CGPoint{CGRectGetMidX(slider->frame()), CGRectGetMidY(slider->frame())});
    const std::string label = slider->brightnessCursor()->brightnessLabel()->text();
    EXPECT_EQ(label, "69%");
    EXPECT_EQ(slider->accessibilityValue(), "69 percent");
}

TEST_F(PickerAccessibility, BelowTheSlidersLimitDarkerLeavesTheColourAndBrighterGoesToTheLimit) {
    picker->setColor(rgb(0x20 / 255.0, 0, 0));
    const auto before = rgba(picker->color());
    window.scene.window()->setFocusedView(slider);
    const auto* const bar = node(UIAccessibilityRole::Slider);
    ASSERT_TRUE(bar && bar->range);
    EXPECT_EQ(bar->value, "12 percent");
    EXPECT_LE(bar->range->minimum, bar->range->current);
    EXPECT_EQ(bar->range->current, 12);

    press(seat::hid::down);
    press(seat::hid::right);
    press(seat::hid::down, UIKeyEvent::Shift);
    EXPECT_FALSE(slider->accessibilitySetValue(5));
    EXPECT_EQ(reports->take(), "");
    EXPECT_EQ(rgba(picker->color()).red, before.red);

    press(seat::hid::up);
    EXPECT_EQ(reports->take(), "value");
    EXPECT_NEAR(hsba(picker->color()).brightness, 0.4, 1e-6);
}

TEST_F(PickerAccessibility, SliderStepsThroughEveryPercent) {
    for (int percent = 99; percent >= 40; --percent) {
        ASSERT_TRUE(slider->accessibilityStep(Direction::Down, Step::Small));
        ASSERT_NEAR(slider->brightness()->doubleValue() * 100, percent, 1e-5);
        ASSERT_EQ(slider->accessibilityValue(), std::to_string(percent) + " percent");
    }
    EXPECT_FALSE(slider->accessibilityStep(Direction::Down, Step::Small));
}

TEST_F(PickerAccessibility, StepOnTheSliderIsADragAndThenATapAndIsReported) {
    slider->accessibilityStep(Direction::Right, Step::Large);

    EXPECT_EQ(sliderEvents->take(), "value editing-end value");
    EXPECT_EQ(reports->take(), "value");
    EXPECT_NEAR(hsba(picker->color()).brightness, 0.9, 1e-6);
    EXPECT_FALSE(slider->brightnessCursor()->editing());
}

TEST_F(PickerAccessibility, SliderTakesAValueAndCutsItToItsRange) {
    EXPECT_TRUE(slider->accessibilitySetValue(62.5));
    EXPECT_NEAR(hsba(picker->color()).brightness, 0.625, 1e-6);
    EXPECT_EQ(reports->take(), "value");
    EXPECT_TRUE(slider->accessibilitySetValue(-5));
    EXPECT_NEAR(hsba(picker->color()).brightness, 0.4, 1e-6);
    EXPECT_TRUE(slider->accessibilitySetValue(500));
    EXPECT_EQ(hsba(picker->color()).brightness, 1);
}

TEST_F(PickerAccessibility, WithoutATrackOrAFieldThereIsNothingToStep) {
    const auto virgin = ZKBrightnessSlider::alloc()->init();
    EXPECT_FALSE(virgin->accessibilityStep(Direction::Up, Step::Small));
    const auto bare = window.keep(ZKColorMapView::alloc()->init());
    EXPECT_FALSE(bare->accessibilityStep(Direction::Up, Step::Small));
    slider->setBrightnessLowerLimit(NSNumber::numberWithDouble(1));
    EXPECT_FALSE(slider->accessibilitySetValue(50));
}

TEST_F(PickerAccessibility, WhatIsNoNumberIsReadAsNothing) {
    const auto narrow = ZKBrightnessSlider::alloc()->init();
    narrow->setColor(hsb(0.5, 1, 1));
    window.show(narrow, {{0, 0}, {56, 31}});
    ScriptedTap::on(narrow)->send(UIGestureRecognizerStateEnded, CGPoint{20, 15}); // a track without length: 0 / 0
    EXPECT_EQ(narrow->accessibilityValue(), "100 percent") << "as its cursor still shows";

    const auto low = window.keep(ZKColorMapView::colorMapWithFrame_saturationUpperLimit({{0, 0}, {320, 20}}, 0.9));
    low->setBrightness(1);
    low->setTileSize(NSNumber::numberWithInt(16));
    ScriptedTap::on(low)->send(UIGestureRecognizerStateEnded, CGPoint{160, 5}); // one row: 0 / 0
    EXPECT_EQ(low->accessibilityValue(), "Hue 0 degrees, saturation 0 percent, brightness 100 percent");
}

TEST_F(PickerAccessibility, PressingWouldChooseTheMiddleAndSoDoesNothing) {
    EXPECT_FALSE(map->accessibilityActivate());
    EXPECT_FALSE(slider->accessibilityActivate());
}

TEST_F(PickerAccessibility, ArrowKeysStepAndShiftStepsFurther) {
    window.scene.window()->setFocusedView(map);
    press(seat::hid::right);
    expectTile(11, 0);
    press(seat::hid::down, UIKeyEvent::Shift);
    expectTile(11, 2);

    window.scene.window()->setFocusedView(slider);
    press(seat::hid::right);
    EXPECT_NEAR(slider->brightness()->doubleValue(), 0.99, 1e-7);
    press(seat::hid::left);
    press(seat::hid::down, UIKeyEvent::Shift);
    EXPECT_NEAR(slider->brightness()->doubleValue(), 0.9, 1e-7);
}
