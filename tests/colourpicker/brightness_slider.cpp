#include "colourpicker/ZKBrightnessSlider.h"

#include "colourpicker/ZKBrightnessCursor.h"
#include "kit/uikit/snapshot.h"
#include "platform/quartz/CAGradientLayer.h"
#include "tests/colourpicker/PickerScene.h"
#include "tests/colourpicker/reference_tables.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

constexpr double float04 = 0.4f;
constexpr CGRect place{{63, 73}, {268, 31}}; // bar from x 20 to 248, track from 28 to 240

class BrightnessSlider : public ::testing::Test {
protected:
    std::shared_ptr<ZKBrightnessSlider> showSlider(double limit = 0.4) {
        const auto slider = ZKBrightnessSlider::alloc()->init();
        slider->setBrightnessLowerLimit(NSNumber::numberWithDouble(limit));
        slider->setColor(hsb(0.6, 0.8, 1));
        window.show(slider, place);
        return slider;
    }
    static CGPoint inWindow(double x, double y = 15) { return {place.origin.x + x, place.origin.y + y}; }
    static double cursorX(const ZKBrightnessSlider& slider) { return slider.brightnessCursor()->center().x; }

    PickerScene window{{400, 400}, 2};
};

} // namespace

TEST_F(BrightnessSlider, VirginHasNoColourNoBrightnessAndNoGradient) {
    const auto slider = ZKBrightnessSlider::alloc()->init();
    EXPECT_FALSE(slider->color());
    EXPECT_FALSE(slider->brightness());
    EXPECT_FALSE(slider->brightnessLowerLimit());
    EXPECT_TRUE(slider->sliderLayer()->colors().empty());
    EXPECT_TRUE(slider->backgroundColor()->isEqual(*UIColor::clearColor()));
    EXPECT_EQ(slider->frame(), CGRectZero);
}

TEST_F(BrightnessSlider, LimitOfAVirginMakesItsColourBlack) {
    const auto slider = ZKBrightnessSlider::alloc()->init();
    slider->setBrightnessLowerLimit(NSNumber::numberWithDouble(0.4));
    ASSERT_TRUE(slider->color());
    EXPECT_EQ(hsba(slider->color()).brightness, 0);
    EXPECT_EQ(slider->brightness()->doubleValue(), 0);
}

// A brightness that the former limit had no place for is read from the colour once the new one has.
TEST_F(BrightnessSlider, NewLimitReadsTheBrightnessInSinglePrecisionBeforeItTakesTheColourAnew) {
    const auto slider = showSlider();
    slider->setColor(hsb(0.6, 0.8, 1.2));
    ASSERT_EQ(slider->brightness()->doubleValue(), 1.2);

    slider->setBrightnessLowerLimit(NSNumber::numberWithDouble(2));

    EXPECT_EQ(slider->brightness()->doubleValue(), static_cast<double>(1.2f));
}

TEST_F(BrightnessSlider, AlignmentRectangleIsTheFrameWithoutItsInsetsAndBack) {
    const auto slider = ZKBrightnessSlider::alloc()->init();
    EXPECT_EQ(slider->alignmentRectInsets(), (UIEdgeInsets{10, 20, 10, 20}));
    EXPECT_EQ(slider->alignmentRectForFrame(place), (CGRect{{83, 83}, {228, 11}}));
    EXPECT_EQ(slider->frameForAlignmentRect({{83, 83}, {228, 11}}), place);
}

TEST_F(BrightnessSlider, BarIsAHorizontalCapsuleWithAHairlineRim) {
    const auto slider = showSlider();
    const CAGradientLayer& bar = *slider->sliderLayer();
    EXPECT_EQ(bar.frame(), (CGRect{{20, 10}, {228, 11}}));
    EXPECT_EQ(bar.cornerRadius(), 5.5);
    EXPECT_EQ(bar.startPoint(), (CGPoint{0, 0.5}));
    EXPECT_EQ(bar.endPoint(), (CGPoint{1, 0.5}));
    EXPECT_EQ(bar.borderWidth(), 0.5);
    EXPECT_EQ(bar.borderColor(), UIColor::lightGrayColor()->CGColor());
}

TEST_F(BrightnessSlider, GradientRunsFromFullBrightnessToTheLimit) {
    const auto slider = showSlider();
    const auto& colors = slider->sliderLayer()->colors();
    ASSERT_EQ(colors.size(), 2u);
    EXPECT_EQ(*colors[0], *hsb(0.6, 0.8, 1)->CGColor());
    EXPECT_NEAR(colors[1]->blue, float04, 1e-12);
    EXPECT_NEAR(colors[1]->red, float04 * 0.2, 1e-12);
    EXPECT_EQ(colors[1]->alpha, 1);
}

TEST_F(BrightnessSlider, ThousandTouchesGiveTheReferenceBrightness) {
    const auto slider = showSlider();
    const auto pan = ScriptedPan::on(slider);
    for (const ReferencePosition& position : referencePositions) {
        pan->send(UIGestureRecognizerStateChanged, CGPoint{position.x, 15});
        ASSERT_NEAR(slider->brightness()->doubleValue(), position.brightness, 1e-15) << position.x;
        ASSERT_EQ(slider->brightness()->type(), NSNumber::Type::Double);
    }
    EXPECT_EQ(std::size(referencePositions), 1000u);
}

TEST_F(BrightnessSlider, ThousandBrightnessesPutTheCursorWhereTheReferenceHasIt) {
    const auto slider = showSlider();
    const auto pan = ScriptedPan::on(slider);
    for (const ReferencePosition& position : referencePositions) {
        pan->send(UIGestureRecognizerStateChanged, CGPoint{position.x, 15});
        ASSERT_EQ(cursorX(*slider), 28 + 212 * static_cast<double>(position.fraction)) << position.x;
        ASSERT_NEAR(cursorX(*slider), std::min(std::max(position.x, 28.0), 240.0), 1e-4);
    }
}

TEST_F(BrightnessSlider, TapLeftOfTheTrackIsExactlyOneAndRightOfItExactlyTheLimit) {
    const auto slider = showSlider();
    const auto events = EventLog::listeningTo(*slider);

    window.finger.tap(inWindow(2));
    EXPECT_EQ(slider->brightness()->doubleValue(), 1);
    EXPECT_EQ(cursorX(*slider), 28);

    window.finger.tap(inWindow(265));
    EXPECT_EQ(slider->brightness()->doubleValue(), float04);
    EXPECT_NEAR(cursorX(*slider), 240, 1e-4);

    EXPECT_EQ(events->take(), "editing-end value editing-end value");
}

TEST_F(BrightnessSlider, OnlyTheHorizontalPlaceCounts) {
    const auto slider = showSlider();
    const auto pan = ScriptedPan::on(slider);
    pan->send(UIGestureRecognizerStateChanged, CGPoint{134, 5000});
    EXPECT_NEAR(slider->brightness()->doubleValue(), 0.7, 1e-6);
}

TEST_F(BrightnessSlider, DragReportsValuesAndItsEndReportsNothing) {
    const auto slider = showSlider();
    const auto events = EventLog::listeningTo(*slider);
    window.finger.press(inWindow(30));
    window.finger.move(inWindow(60)); // begins
    EXPECT_EQ(events->take(), "");
    window.finger.move(inWindow(100));
    EXPECT_TRUE(slider->brightnessCursor()->editing());
    window.finger.move(inWindow(134));
    EXPECT_EQ(events->take(), "value value");
    const double dragged = slider->brightness()->doubleValue();

    window.finger.release();

    EXPECT_EQ(events->take(), "");
    EXPECT_EQ(slider->brightness()->doubleValue(), dragged);
    EXPECT_FALSE(slider->brightnessCursor()->editing());
}

TEST_F(BrightnessSlider, PanThatEndsWithItsFingerDownReportsAndStaysEnlarged) {
    const auto slider = showSlider();
    const auto events = EventLog::listeningTo(*slider);
    ScriptedPan::on(slider)->send(UIGestureRecognizerStateEnded, CGPoint{134, 15});
    EXPECT_EQ(events->take(), "editing-end value");
    EXPECT_TRUE(slider->brightnessCursor()->editing());
}

TEST_F(BrightnessSlider, BeganAndCancelledAreIgnored) {
    const auto slider = showSlider();
    const auto events = EventLog::listeningTo(*slider);
    const auto pan = ScriptedPan::on(slider);
    pan->send(UIGestureRecognizerStateBegan, CGPoint{134, 15});
    pan->send(UIGestureRecognizerStateCancelled, std::nullopt);
    ScriptedTap::on(slider)->send(UIGestureRecognizerStateEnded, std::nullopt);
    EXPECT_EQ(events->take(), "");
    EXPECT_EQ(slider->brightness()->doubleValue(), 1);
}

TEST_F(BrightnessSlider, LastPlaceOfADragIsSharedByAllSliders) {
    const auto slider = showSlider();
    window.finger.drag(inWindow(30), inWindow(200));
    EXPECT_EQ(ZKBrightnessSlider::lastPanLocation(), (CGPoint{200, 15}));
    ScriptedPan::on(ZKBrightnessSlider::alloc()->init())->send(UIGestureRecognizerStateChanged, CGPoint{7, 8});
    EXPECT_EQ(ZKBrightnessSlider::lastPanLocation(), (CGPoint{7, 8}));
}

TEST_F(BrightnessSlider, ColourIsMadeAnewAtEveryCallAndReplacesTheOneBefore) {
    const auto slider = showSlider();
    const auto first = slider->color();
    const auto second = slider->color();
    EXPECT_NE(first, second);
    EXPECT_TRUE(first->isEqual(*second));

    window.finger.tap(inWindow(134));
    const HSBA color = hsba(slider->color());
    EXPECT_NEAR(color.hue, 0.6, 1e-12);
    EXPECT_NEAR(color.saturation, 0.8, 1e-12);
    EXPECT_EQ(color.brightness, static_cast<double>(slider->brightness()->floatValue()));
    EXPECT_EQ(color.alpha, 1);
}

TEST_F(BrightnessSlider, LimitRoundsTheBrightnessToSinglePrecisionOnly) {
    const auto slider = showSlider();
    window.finger.tap(inWindow(134));
    const double before = slider->brightness()->doubleValue();
    EXPECT_NEAR(before, 0.7000000029802322, 1e-15);

    slider->setBrightnessLowerLimit(NSNumber::numberWithDouble(0.4));

    EXPECT_EQ(slider->brightness()->doubleValue(), static_cast<double>(static_cast<float>(before)));
    EXPECT_NEAR(slider->brightness()->doubleValue(), 0.699999988079071, 1e-15);
}

TEST_F(BrightnessSlider, LimitIsReadInSinglePrecisionAndShownAtTheRightEnd) {
    const auto slider = showSlider();
    slider->setBrightnessLowerLimit(NSNumber::numberWithDouble(0.25));
    window.finger.tap(inWindow(265));
    EXPECT_EQ(slider->brightness()->doubleValue(), 0.25);
    EXPECT_NEAR(slider->sliderLayer()->colors()[1]->blue, 0.25, 1e-12);
}

TEST_F(BrightnessSlider, WithoutALimitTheRightEndIsBlack) {
    const auto slider = ZKBrightnessSlider::alloc()->init();
    slider->setColor(hsb(0.6, 0.8, 1));
    window.show(slider, place);
    window.finger.tap(inWindow(265));
    EXPECT_EQ(slider->brightness()->doubleValue(), 0);
    EXPECT_EQ(cursorX(*slider), 240);
}

TEST_F(BrightnessSlider, BrightnessBelowTheLimitPutsTheCursorBeyondTheBar) {
    const auto slider = showSlider();
    slider->setColor(UIColor::blackColor());
    EXPECT_NEAR(cursorX(*slider), 28 + 212 * 5.0 / 3, 1e-3);
    EXPECT_EQ(hsba(slider->color()).brightness, 0);
}

TEST_F(BrightnessSlider, BrightnessAboveOneLeavesCursorAndItsColourAlone) {
    const auto slider = showSlider();
    slider->setColor(hsb(0.6, 0.8, 0.7));
    const double before = cursorX(*slider);
    const auto shown = slider->brightnessCursor()->color();

    slider->setColor(rgb(2, 0, 0));

    EXPECT_EQ(cursorX(*slider), before);
    EXPECT_EQ(slider->brightnessCursor()->color(), shown);
    EXPECT_EQ(slider->brightness()->doubleValue(), 2);
}

TEST_F(BrightnessSlider, LimitOfOneMakesEveryTouchFullAndAnyLessPutsTheCursorAtInfinity) {
    const auto slider = showSlider(1);
    const double before = cursorX(*slider);
    window.finger.tap(inWindow(200));
    EXPECT_EQ(slider->brightness()->doubleValue(), 1);
    EXPECT_EQ(cursorX(*slider), before) << "0 / 0: the cursor stays";

    slider->setColor(hsb(0.6, 0.8, 0.5));
    EXPECT_TRUE(std::isinf(cursorX(*slider)));
    seat::snapshot(window.scene);

    slider->setBrightnessLowerLimit(NSNumber::numberWithDouble(0.4));
    EXPECT_TRUE(std::isfinite(cursorX(*slider)));
}

TEST_F(BrightnessSlider, NarrowFramesNeitherCrashNorLoop) {
    const auto slider = showSlider();
    for (const double width : {60.0, 56.0, 50.0, 40.0, 30.0, 0.0}) {
        slider->setFrame({{63, 73}, {width, 31}});
        window.scene.prepareFrame();
        EXPECT_EQ(slider->sliderLayer()->frame().size.width, width - 40);
        ScriptedTap::on(slider)->send(UIGestureRecognizerStateEnded, CGPoint{10, 15});
        seat::snapshot(window.scene);
        slider->setColor(hsb(0.6, 0.8, 1));
    }
}

TEST_F(BrightnessSlider, CursorKeepsItsHeightOnTheMiddleOfTheTrack) {
    const auto slider = showSlider();
    EXPECT_EQ(slider->brightnessCursor()->center().y, 15.5);
    window.finger.drag(inWindow(30), inWindow(200, 29));
    EXPECT_EQ(slider->brightnessCursor()->center().y, 15.5);
}

TEST_F(BrightnessSlider, LayoutPutsTheCursorWhereItsBrightnessIs) {
    const auto slider = showSlider();
    window.finger.tap(inWindow(134));
    slider->setFrame({{0, 0}, {168, 31}});
    window.scene.prepareFrame();
    EXPECT_NEAR(cursorX(*slider), 84, 1e-4);
}

TEST_F(BrightnessSlider, PatternColourReadsAsBlack) {
    const auto slider = showSlider();
    slider->setColor(UIColor::patternColor());
    EXPECT_EQ(slider->brightness()->doubleValue(), 0);
    EXPECT_EQ(hsba(slider->color()).saturation, 0);
}
