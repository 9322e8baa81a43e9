// What of a touch on the colour map has happened when its events go out, and how the map is made.

#include "colourpicker/ZKColorCursor.h"
#include "colourpicker/ZKColorMapView.h"
#include "platform/uikit/UIImage.h"
#include "tests/colourpicker/AtEvent.h"
#include "tests/colourpicker/PickerScene.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

namespace {

std::shared_ptr<ZKColorMapView> makeMap(PickerScene& window, double limit = 0.9) {
    const auto map = window.keep(ZKColorMapView::colorMapWithFrame_saturationUpperLimit(CGRectZero, limit));
    map->setBrightness(1);
    return map;
}

// A map of 20 columns and 22 rows.
class ColorMapOrder : public ::testing::Test {
protected:
    ColorMapOrder() {
        map->setTileSize(NSNumber::numberWithInt(16));
        window.show(map, {{0, 0}, {320, 352}});
        window.waitForField(*map);
    }

    PickerScene window;
    std::shared_ptr<ZKColorMapView> map = makeMap(window);
    std::shared_ptr<ScriptedPan> pan = ScriptedPan::on(map);
};

class CountingView final : public UIView {
    NS_CLASS(CountingView)
    void layoutSubviews() override { ++layouts; }
    int layouts = 0;
};
NS_CLASS_IMPLEMENTATION(CountingView, UIView)

} // namespace

TEST_F(ColorMapOrder, WhenEditingEndsColourAndCursorAreThoseOfTheTouchAlready) {
    double hue = -1;
    CGAffineTransform cursor;
    const auto watcher = AtEvent::of(*map, editingEnd, [&] {
        hue = hsba(map->color()).hue;
        cursor = map->colorCursor()->transform();
    });

    window.finger.tap(CGPoint{5 * 16 + 3, 7 * 16 + 12});

    EXPECT_NEAR(hue, 0.25, 1e-12);
    EXPECT_EQ(cursor, CGAffineTransformMakeTranslation(80, 112));
}

TEST_F(ColorMapOrder, CursorGrowsAfterTheFirstReportAndShrinksBeforeTheLast) {
    std::vector<bool> enlarged;
    const auto watcher = AtEvent::of(*map, valueChanged, [&] { enlarged.push_back(map->colorCursor()->editing()); });

    pan->send(UIGestureRecognizerStateChanged, CGPoint{40, 40});
    pan->send(UIGestureRecognizerStateChanged, CGPoint{60, 40});
    pan->send(UIGestureRecognizerStateEnded, std::nullopt);

    EXPECT_EQ(enlarged, (std::vector<bool>{false, true, false}));
}

TEST_F(ColorMapOrder, CursorHasTheTouchedColourBeforeItMoves) {
    window.finger.tap(CGPoint{5 * 16 + 3, 7 * 16 + 12});
    EXPECT_EQ(map->colorCursor()->color(), map->color());
}

TEST_F(ColorMapOrder, TouchMakesANewOpaqueColourEachTime) {
    window.finger.tap(CGPoint{40, 40});
    const auto first = map->color();
    window.finger.tap(CGPoint{40, 40});
    EXPECT_NE(map->color(), first);
    EXPECT_TRUE(map->color()->isEqual(*first));
    EXPECT_EQ(rgba(first).alpha, 1);
}

TEST_F(ColorMapOrder, TapAndPanAreHeardAndNothingElse) {
    const auto& recognizers = map->gestureRecognizers();
    ASSERT_EQ(recognizers.size(), 2u);
    EXPECT_TRUE(std::dynamic_pointer_cast<UITapGestureRecognizer>(recognizers[0]));
    EXPECT_TRUE(std::dynamic_pointer_cast<UIPanGestureRecognizer>(recognizers[1]));
}

TEST_F(ColorMapOrder, NewTileSizeMovesTheCursorToTheColoursTileOfThatSize) {
    map->setColor(hsb(0.25, 1, 1));
    map->setTileSize(NSNumber::numberWithInt(20));
    EXPECT_EQ(map->colorCursor()->frame(), (CGRect{{76, -4}, {28, 28}}));
    EXPECT_EQ(map->colorCursor()->transform(), CGAffineTransformMakeTranslation(80, 0));

    map->setTileSize(NSNumber::numberWithInt(16));
    EXPECT_EQ(map->colorCursor()->frame(), (CGRect{{-6 + 5 * 16, -6}, {28, 28}}));
}

TEST_F(ColorMapOrder, WithoutATileSizeTheCursorStandsAroundTheCorner) {
    map->setColor(hsb(0, 1, 1));
    map->setTileSize(std::nullopt);
    EXPECT_EQ(map->colorCursor()->frame(), (CGRect{{-14, -14}, {28, 28}}));
}

TEST_F(ColorMapOrder, TileSizeIsReadInSinglePrecision) {
    map->setTileSize(NSNumber::numberWithDouble(0.1));
    const double tile = 0.1f;
    EXPECT_EQ(map->tileSize()->doubleValue(), 0.1);
    EXPECT_EQ(map->intrinsicContentSize().width, 3199 * tile) << "a little more than a tenth: one column fewer";
}

TEST(ColorMapMaking, HairlineIsOneDevicePixelAtEveryScale) {
    for (const double scale : {1.0, 2.0, 3.0}) {
        PickerScene window({400, 700}, scale);
        EXPECT_EQ(makeMap(window)->lineLayer()->frame(), (CGRect{{0, -1 / scale}, {0, 1 / scale}}));
    }
}

TEST(ColorMapMaking, FieldIsDrawnWhenTheTileSizeComesLast) {
    PickerScene window;
    const auto map = makeMap(window);
    window.show(map, {{0, 0}, {64, 64}});
    EXPECT_FALSE(map->colorMapLayer());

    map->setTileSize(NSNumber::numberWithInt(16));

    EXPECT_TRUE(window.waitForField(*map));
}

TEST(ColorMapMaking, FrameThatIsNullDrawsNothing) {
    PickerScene window;
    const auto map = makeMap(window);
    map->setTileSize(NSNumber::numberWithInt(16));
    map->setFrame(CGRectNull);
    map->setNeedsLayout();
    map->layoutIfNeeded();

    const auto complete = makeMap(window);
    complete->setTileSize(NSNumber::numberWithInt(16));
    window.show(complete, {{0, 0}, {64, 64}});
    ASSERT_TRUE(window.waitForField(*complete));

    EXPECT_FALSE(map->colorMapLayer());
}

TEST(ColorMapMaking, FieldWithoutRowsHasNoPicture) {
    PickerScene window;
    const auto map = makeMap(window);
    map->setTileSize(NSNumber::numberWithInt(16));
    window.show(map, {{0, 0}, {320, 10}});
    ASSERT_TRUE(window.waitForField(*map));
    EXPECT_FALSE(map->colorMapLayer()->contents());
    EXPECT_FALSE(map->colorMapBackgroundLayer()->contents());
    EXPECT_EQ(map->colorMapLayer()->frame(), CGRectZero);
    EXPECT_EQ(map->intrinsicContentSize(), (CGSize{320, 0}));
}

TEST(ColorMapMaking, FieldComesInWithTheBrightnessOfThatMoment) {
    PickerScene window;
    const auto map = makeMap(window);
    map->setTileSize(NSNumber::numberWithInt(16));
    window.show(map, {{0, 0}, {64, 64}});
    while (!map->colorMapBackgroundLayer()) std::this_thread::yield(); // drawn by the worker, not yet shown

    map->setBrightness(0.3);

    EXPECT_TRUE(window.waitForField(*map));
    EXPECT_EQ(map->colorMapLayer()->opacity(), 0.3);
}

TEST(ColorMapMaking, FieldThatComesInAsksForALayoutOfWhatHoldsTheMap) {
    PickerScene window;
    const auto around = CountingView::alloc();
    around->initWithFrame({{0, 0}, {100, 100}});
    const auto map = makeMap(window);
    map->setTileSize(NSNumber::numberWithInt(16));
    map->setFrame({{0, 0}, {70, 70}});
    around->addSubview(map);
    window.show(around, {{0, 0}, {100, 100}});
    const int before = around->layouts;

    ASSERT_TRUE(window.waitForField(*map));

    EXPECT_GT(around->layouts, before);
}

TEST(ColorMapMaking, LimitOneMakesTheBottomRowWhiteAndLimitZeroLeavesItPure) {
    for (const auto& [limit, bottom] : {std::pair{1.0, 0xffffffffu}, std::pair{0.0, 0xffff0000u}}) {
        const auto image =
            ZKColorMapView::colorMapImageWithSize_tileSize_saturationUpperLimit({64, 64}, 16, limit)->CGImage();
        EXPECT_EQ(image->pixels.front(), 0xffff0000u);
        EXPECT_EQ(image->pixels[image->width * (image->height - 1)], bottom) << limit;
    }
}
