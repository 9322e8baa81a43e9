#include "colourpicker/ZKBrightnessCursor.h"
#include "colourpicker/ZKColorCursor.h"
#include "kit/quartz/LayerInternals.h"
#include "platform/uikit/UILabel.h"
#include "tests/colourpicker/PickerScene.h"

#include <gtest/gtest.h>

namespace {

std::string labelText(const ZKBrightnessCursor& cursor) { return cursor.brightnessLabel()->attributedText()->string(); }

struct Rim {
    CGColor border;
    CGColor disc;
    friend bool operator==(const Rim&, const Rim&) = default;
};
Rim rimOf(const ZKColorCursor& cursor) {
    return {*cursor.backLayer()->borderColor(), *cursor.backLayer()->backgroundColor()};
}
constexpr Rim normalRim{{0.65, 0.65, 0.65, 1}, {1, 1, 1, 0.7}};
constexpr Rim darkRim{{0, 0, 0, 0.3}, {0, 0, 0, 0.2}};

class Cursors : public ::testing::Test {
protected:
    PickerScene window{{400, 400}, 2};
    std::shared_ptr<ZKColorCursor> cursor = ZKColorCursor::colorCursorWithPoint({10, 20});
    std::shared_ptr<ZKBrightnessCursor> rider = ZKBrightnessCursor::alloc()->init();
};

} // namespace

TEST_F(Cursors, AreTwentyEightPointDiscsWithASeventeenPointDiscOfTheColour) {
    EXPECT_EQ(ZKColorCursor::cursorSize(), (CGSize{28, 28}));
    EXPECT_EQ(cursor->frame(), (CGRect{{10, 20}, {28, 28}}));
    EXPECT_EQ(rider->frame(), (CGRect{{0, 0}, {28, 28}}));
    for (const auto& [back, color] :
         {std::pair{cursor->backLayer(), cursor->colorLayer()}, std::pair{rider->backLayer(), rider->colorLayer()}}) {
        EXPECT_EQ(back->frame(), (CGRect{{0, 0}, {28, 28}}));
        EXPECT_EQ(back->cornerRadius(), 14);
        EXPECT_EQ(back->borderWidth(), 0.5);
        EXPECT_EQ(color->frame(), (CGRect{{5.5, 5.5}, {17, 17}}));
        EXPECT_EQ(color->cornerRadius(), 8.5);
    }
}

TEST_F(Cursors, HaveTheColourOnTopOfTheDiscAndTakeNoTouches) {
    for (const std::shared_ptr<UIView>& view : std::vector<std::shared_ptr<UIView>>{cursor, rider}) {
        EXPECT_FALSE(view->isUserInteractionEnabled());
        EXPECT_TRUE(view->backgroundColor()->isEqual(*UIColor::clearColor()));
    }
    EXPECT_EQ(cursor->layer()->sublayers()[0], cursor->backLayer());
    EXPECT_EQ(cursor->layer()->sublayers()[1], cursor->colorLayer());
    EXPECT_EQ(rider->layer()->sublayers()[0], rider->backLayer());
    EXPECT_EQ(rider->layer()->sublayers()[1], rider->colorLayer());
}

TEST_F(Cursors, FreshColourCursorSaysGrayWithTheNormalRimAndNoColourInItsDisc) {
    EXPECT_TRUE(cursor->isGrayCursor());
    EXPECT_EQ(rimOf(*cursor), normalRim);
    EXPECT_FALSE(cursor->colorLayer()->backgroundColor());
    EXPECT_TRUE(cursor->color()->isEqual(*UIColor::whiteColor()));
}

TEST_F(Cursors, FirstPaleColourLeavesTheNormalRim) {
    cursor->setColor(hsb(0, 0.1, 0.9));

    EXPECT_TRUE(cursor->isGrayCursor());
    EXPECT_EQ(rimOf(*cursor), normalRim);
}

TEST_F(Cursors, FirstSaturatedColourKeepsTheNormalRimAndIsNotGray) {
    cursor->setColor(hsb(0, 0.9, 0.9));

    EXPECT_FALSE(cursor->isGrayCursor());
    EXPECT_EQ(rimOf(*cursor), normalRim);
}

TEST_F(Cursors, FirstDarkColourKeepsTheNormalRimAndIsNotGray) {
    cursor->setColor(hsb(0, 0.1, 0.2));

    EXPECT_FALSE(cursor->isGrayCursor());
    EXPECT_EQ(rimOf(*cursor), normalRim);
}

TEST_F(Cursors, RimTurnsDarkWhenAColourTurnsPaleAndBackAgain) {
    cursor->setColor(hsb(0, 0.9, 0.9));
    cursor->setColor(hsb(0, 0.1, 0.9));
    EXPECT_TRUE(cursor->isGrayCursor());
    EXPECT_EQ(rimOf(*cursor), darkRim);

    cursor->setColor(hsb(0, 0.1, 0.2));
    EXPECT_FALSE(cursor->isGrayCursor());
    EXPECT_EQ(rimOf(*cursor), normalRim);
}

TEST_F(Cursors, RimIsLeftAloneWhileTheOutcomeStays) {
    cursor->setColor(hsb(0, 0.9, 0.9));
    cursor->setColor(hsb(0, 0.1, 0.9));
    cursor->setGrayCursor(false); // as a plain accessor

    EXPECT_EQ(rimOf(*cursor), darkRim);
    cursor->setColor(hsb(0, 0.9, 0.9));
    EXPECT_EQ(rimOf(*cursor), darkRim);
}

TEST_F(Cursors, BrightnessOfExactlySevenTenthsIsNotPale) {
    cursor->setColor(UIColor::colorWithWhite_alpha(0.7, 1));
    EXPECT_FALSE(cursor->isGrayCursor());
    cursor->setColor(UIColor::colorWithWhite_alpha(0.7000001, 1));
    EXPECT_TRUE(cursor->isGrayCursor());
}

TEST_F(Cursors, SaturationOfExactlyFourTenthsIsNotPale) {
    const auto color = rgb(1, 0.6, 0.6);
    ASSERT_EQ(hsba(color).saturation, 0.4);
    cursor->setColor(color);
    EXPECT_FALSE(cursor->isGrayCursor());
    cursor->setColor(rgb(1, 0.6001, 0.6001));
    EXPECT_TRUE(cursor->isGrayCursor());
}

TEST_F(Cursors, WithoutAColourTheDiscIsEmptyAndTheRuleSaysNotPale) {
    cursor->setColor(rgb(0, 0, 1));
    cursor->setColor(nullptr);
    rider->setColor(nullptr);

    EXPECT_FALSE(cursor->colorLayer()->backgroundColor());
    EXPECT_FALSE(cursor->isGrayCursor());
    EXPECT_EQ(labelText(*rider), "0%");
}

TEST_F(Cursors, DiscShowsTheColourItself) {
    const auto blue = rgb(0, 0, 1);
    cursor->setColor(blue);
    rider->setColor(blue);
    EXPECT_EQ(cursor->colorLayer()->backgroundColor(), blue->CGColor());
    EXPECT_EQ(rider->colorLayer()->backgroundColor(), blue->CGColor());
}

TEST_F(Cursors, PercentageIsCutAndItsSignIsSmaller) {
    const std::pair<double, const char*> cases[] = {{1, "100%"}, {0.999, "99%"}, {0.456, "45%"}, {0, "0%"}};
    for (const auto& [brightness, text] : cases) {
        rider->setColor(UIColor::colorWithWhite_alpha(brightness, 1));
        EXPECT_EQ(labelText(*rider), text);
    }
    const auto& runs = rider->brightnessLabel()->attributedText()->runs();
    ASSERT_EQ(runs.size(), 2u);
    EXPECT_EQ(runs[0].attributes.font->pointSize(), 14);
    EXPECT_EQ(runs[1].attributes.font->pointSize(), 12);
    for (const auto& run : runs) EXPECT_EQ(rgba(run.attributes.foregroundColor).red, 0.5);
}

TEST_F(Cursors, PercentageStandsHiddenAboveTheCursorTwoPointsRightOfItsMiddle) {
    const UILabel& label = *rider->brightnessLabel();
    EXPECT_EQ(label.bounds().size, (CGSize{40, 16}));
    EXPECT_EQ(label.center(), (CGPoint{16, -20}));
    EXPECT_EQ(label.textAlignment(), NSTextAlignmentCenter);
    EXPECT_EQ(label.alpha(), 0);
    EXPECT_EQ(label.superview(), rider);
}

TEST_F(Cursors, EditingEnlargesAndItsEndBringsBackTheNormalLook) {
    window.show(cursor, {{10, 20}, {28, 28}});
    window.show(rider, {{100, 100}, {28, 28}});

    cursor->setEditing(true);
    rider->setEditing(true);
    for (const auto& [back, color] :
         {std::pair{cursor->backLayer(), cursor->colorLayer()}, std::pair{rider->backLayer(), rider->colorLayer()}}) {
        EXPECT_EQ(back->transform(), CATransform3DMakeScale(1.6, 1.6, 1));
        EXPECT_EQ(color->transform(), CATransform3DMakeScale(1.4, 1.4, 1));
    }
    EXPECT_EQ(rider->brightnessLabel()->alpha(), 1);
    EXPECT_EQ(rider->brightnessLabel()->transform(), CGAffineTransformIdentity);

    cursor->setEditing(false);
    rider->setEditing(false);
    for (const auto& layer : {cursor->backLayer(), cursor->colorLayer(), rider->backLayer(), rider->colorLayer()})
        EXPECT_EQ(layer->transform(), CATransform3DIdentity);
    EXPECT_EQ(rider->brightnessLabel()->alpha(), 0);
    EXPECT_EQ(rider->brightnessLabel()->transform(), CGAffineTransformMakeTranslation(0, 10));
}

TEST_F(Cursors, EditingTakesATenthOfASecondToShow) {
    window.show(rider, {{100, 100}, {28, 28}});
    window.finger.settle();

    rider->setEditing(true);
    window.finger.wait(0.05);
    EXPECT_TRUE(window.scene.isAnimating());
    window.finger.wait(0.06);
    EXPECT_FALSE(window.scene.isAnimating());
}

TEST_F(Cursors, EditingThatTurnsBackBeginsAtItsFarEnd) {
    window.show(cursor, {{10, 20}, {28, 28}});
    const auto shown = [&] { return LayerInternals::shown(*cursor->backLayer()).transform; };
    cursor->setEditing(true);
    EXPECT_EQ(shown(), CATransform3DIdentity);
    window.finger.wait(0.05);
    ASSERT_NE(shown(), CATransform3DMakeScale(1.6, 1.6, 1));

    cursor->setEditing(false);

    EXPECT_EQ(shown(), CATransform3DMakeScale(1.6, 1.6, 1));
}

TEST_F(Cursors, EqualEditingValueDoesNotAnimate) {
    window.show(rider, {{100, 100}, {28, 28}});
    window.show(cursor, {{10, 20}, {28, 28}});
    rider->setEditing(true);
    cursor->setEditing(true);
    window.finger.settle();

    rider->setEditing(true);
    cursor->setEditing(true);
    window.scene.prepareFrame();

    EXPECT_FALSE(window.scene.isAnimating());
}
