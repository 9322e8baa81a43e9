// The cursors in detail: what does not move, what is cut, and where their movements begin.

#include "colourpicker/ZKBrightnessCursor.h"
#include "colourpicker/ZKColorCursor.h"
#include "kit/quartz/LayerInternals.h"
#include "kit/quartz/geometry.h"
#include "platform/uikit/UILabel.h"
#include "tests/colourpicker/PickerScene.h"

#include <gtest/gtest.h>

namespace {

const auto enlarged = CATransform3DMakeScale(1.6, 1.6, 1);

class CursorDetails : public ::testing::Test {
protected:
    CursorDetails() {
        window.show(cursor, {{10, 20}, {28, 28}});
        window.show(rider, {{100, 100}, {28, 28}});
        window.finger.settle();
    }

    PickerScene window{{400, 400}, 2};
    std::shared_ptr<ZKColorCursor> cursor = ZKColorCursor::colorCursorWithPoint({10, 20});
    std::shared_ptr<ZKBrightnessCursor> rider = ZKBrightnessCursor::alloc()->init();
};

} // namespace

TEST_F(CursorDetails, RiderIsTheSameTranslucentWhiteDiscWithAGreyRim) {
    EXPECT_EQ(*rider->backLayer()->borderColor(), (CGColor{0.65, 0.65, 0.65, 1}));
    EXPECT_EQ(*rider->backLayer()->backgroundColor(), (CGColor{1, 1, 1, 0.7}));
    EXPECT_FALSE(rider->colorLayer()->backgroundColor());
    EXPECT_FALSE(rider->color());
}

TEST_F(CursorDetails, RiderKeepsItsRimOverPaleColours) {
    rider->setColor(hsb(0, 0.9, 0.9));
    rider->setColor(hsb(0, 0.1, 0.9));
    EXPECT_EQ(*rider->backLayer()->borderColor(), (CGColor{0.65, 0.65, 0.65, 1}));
}

TEST_F(CursorDetails, NeitherIsEditingWhenMade) {
    EXPECT_FALSE(cursor->editing());
    EXPECT_FALSE(rider->editing());
}

TEST(CursorRims, AreOneDevicePixelAtEveryScale) {
    for (const double scale : {1.0, 2.0, 3.0}) {
        const PickerScene window({400, 400}, scale);
        EXPECT_EQ(ZKColorCursor::colorCursorWithPoint({0, 0})->backLayer()->borderWidth(), 1 / scale);
        EXPECT_EQ(ZKBrightnessCursor::alloc()->init()->backLayer()->borderWidth(), 1 / scale);
    }
}

TEST_F(CursorDetails, PercentageIsMiddleGrey) {
    const RGBA grey = rgba(rider->brightnessLabel()->textColor());
    EXPECT_EQ(grey.red, 0.5);
    EXPECT_EQ(grey.blue, 0.5);
    EXPECT_EQ(grey.alpha, 1);
}

TEST_F(CursorDetails, PercentageIsCutAlsoWhereTheProductFallsJustShort) {
    // 0.29 x 100 is a little less than 29 in binary.
    for (const auto& [brightness, text] : {std::pair{0.29, "28%"}, std::pair{0.57, "56%"}, std::pair{0.3, "30%"}}) {
        rider->setColor(UIColor::colorWithWhite_alpha(brightness, 1));
        EXPECT_EQ(rider->brightnessLabel()->text(), text);
    }
}

TEST_F(CursorDetails, BrightnessAboveOneIsShownAsItIs) {
    rider->setColor(rgb(2, 0, 0));
    EXPECT_EQ(rider->brightnessLabel()->text(), "200%");
}

TEST_F(CursorDetails, NewColourShowsAtOnceAlsoInAnAnimation) {
    cursor->setColor(hsb(0, 0.9, 0.9));
    const auto pale = hsb(0, 0.1, 0.9);

    UIView::animateWithDuration_animations(1, [&] {
        cursor->setColor(pale);
        rider->setColor(pale);
    });

    EXPECT_FALSE(window.scene.isAnimating());
    const auto& rim = LayerInternals::shown(*cursor->backLayer());
    EXPECT_EQ(*rim.borderColor, (CGColor{0, 0, 0, 0.3}));
    EXPECT_EQ(*rim.backgroundColor, (CGColor{0, 0, 0, 0.2}));
    EXPECT_EQ(LayerInternals::shown(*cursor->colorLayer()).backgroundColor, pale->CGColor());
    EXPECT_EQ(LayerInternals::shown(*rider->colorLayer()).backgroundColor, pale->CGColor());
}

TEST_F(CursorDetails, SameColourAgainStillRedrawsTheColourCursor) {
    const auto color = rgb(0, 0, 1);
    cursor->setColor(color);
    window.finger.settle();
    ASSERT_TRUE(window.scene.prepareFrame().empty());

    cursor->setColor(color);

    EXPECT_FALSE(window.scene.prepareFrame().empty());
}

TEST_F(CursorDetails, BothGrowAndShrinkOverATenthOfASecond) {
    for (const bool editing : {true, false}) {
        cursor->setEditing(editing);
        rider->setEditing(editing);
        window.finger.wait(0.05);
        EXPECT_TRUE(window.scene.isAnimating());
        EXPECT_NE(LayerInternals::shown(*cursor->backLayer()).transform, enlarged);
        EXPECT_NE(LayerInternals::shown(*rider->backLayer()).transform, CATransform3DIdentity);
        window.finger.wait(0.06);
        EXPECT_FALSE(window.scene.isAnimating());
    }
}

TEST_F(CursorDetails, EditingThatBeginsAgainBeginsSmall) {
    cursor->setEditing(true);
    window.finger.settle();
    cursor->setEditing(false);
    window.finger.wait(0.03);
    ASSERT_NE(LayerInternals::shown(*cursor->backLayer()).transform, CATransform3DIdentity);

    cursor->setEditing(true);

    EXPECT_EQ(LayerInternals::shown(*cursor->backLayer()).transform, CATransform3DIdentity);
}

TEST_F(CursorDetails, PercentageRisesTenPointsWhileItAppears) {
    rider->setEditing(true);
    const auto shown = [&]() -> const auto& { return LayerInternals::shown(*rider->brightnessLabel()->layer()); };
    EXPECT_EQ(shown().opacity, 0);
    EXPECT_EQ(CATransform3DGetAffineTransform(shown().transform), CGAffineTransformMakeTranslation(0, 10));
    window.finger.settle();
    EXPECT_EQ(shown().opacity, 1);
    EXPECT_EQ(CATransform3DGetAffineTransform(shown().transform), CGAffineTransformIdentity);
}

TEST_F(CursorDetails, ColourCursorAnswersToSetEditingByName) { EXPECT_TRUE(cursor->respondsToSelector("setEditing:")); }
