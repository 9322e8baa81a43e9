#include "colourpicker/ZKColorMapView.h"

#include "colourpicker/ZKColorCursor.h"
#include "platform/foundation/NSArray.h"
#include "tests/colourpicker/PickerScene.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

class ColorMap : public ::testing::Test {
protected:
    std::shared_ptr<ZKColorMapView> makeMap(CGRect frame = CGRectZero, double limit = 0.9) {
        return window.keep(ZKColorMapView::colorMapWithFrame_saturationUpperLimit(frame, limit));
    }
    // As the picker makes one: tiles of 16 points.
    std::shared_ptr<ZKColorMapView> showMap(CGRect frame) {
        const auto map = makeMap();
        map->setTileSize(NSNumber::numberWithInt(16));
        window.show(map, frame);
        return map;
    }
    static std::shared_ptr<NSCoder> archive() {
        const auto frame = NSArray::arrayWithObjects({NSNumber::numberWithInt(0), NSNumber::numberWithInt(0),
                                                      NSNumber::numberWithInt(64), NSNumber::numberWithInt(64)});
        const auto values = NSMutableDictionary::dictionary();
        values->setObject_forKey(frame, "frame");
        return NSCoder::coderWithDictionary(values);
    }

    PickerScene window{{400, 700}, 2};
};

} // namespace

TEST_F(ColorMap, IsInvisibleAndHalfBrightWithoutAColourWhenMade) {
    const auto map = makeMap();

    EXPECT_EQ(map->alpha(), 0);
    EXPECT_EQ(map->brightness(), 0.5);
    EXPECT_FALSE(map->color());
    EXPECT_FALSE(map->tileSize());
    EXPECT_FALSE(map->colorMapLayer());
    EXPECT_FALSE(map->colorMapBackgroundLayer());
    EXPECT_TRUE(map->backgroundColor()->isEqual(*UIColor::whiteColor()));
}

TEST_F(ColorMap, LimitIsHeldInSinglePrecision) {
    EXPECT_EQ(makeMap()->saturationUpperLimit()->doubleValue(), float09);
    EXPECT_EQ(makeMap()->saturationUpperLimit()->type(), NSNumber::Type::Float);
}

TEST_F(ColorMap, DefaultLimitIsNinetyFivePercent) {
    const double expected = 0.95f;
    EXPECT_EQ(window.keep(ZKColorMapView::alloc()->init())->saturationUpperLimit()->doubleValue(), expected);
    const auto map = window.keep(ZKColorMapView::colorMapWithFrame({{1, 2}, {3, 4}}));
    EXPECT_EQ(map->saturationUpperLimit()->doubleValue(), expected);
    EXPECT_EQ(map->frame(), (CGRect{{1, 2}, {3, 4}}));
}

TEST_F(ColorMap, HairlineIsOnePixelAboveTheTopEdgeAndAsWideAsTheViewWasWhenMade) {
    const auto map = makeMap({{0, 0}, {100, 50}});
    EXPECT_EQ(map->lineLayer()->frame(), (CGRect{{0, -0.5}, {100, 0.5}}));
    EXPECT_EQ(*map->lineLayer()->backgroundColor(), (CGColor{0.7, 0.7, 0.7, 1}));
    EXPECT_EQ(map->lineLayer()->superlayer(), map->layer().get());

    map->setFrame({{0, 0}, {200, 50}});
    EXPECT_EQ(map->lineLayer()->frame().size.width, 100);
}

TEST_F(ColorMap, CursorBeginsCentredOnTheFirstTile) {
    const auto map = makeMap();
    EXPECT_EQ(map->colorCursor()->frame(), (CGRect{{-14, -14}, {28, 28}}));

    map->setTileSize(NSNumber::numberWithInt(16));
    EXPECT_EQ(map->colorCursor()->frame(), (CGRect{{-6, -6}, {28, 28}}));
}

TEST_F(ColorMap, FieldIsDrawnOnceLaidOutWithBothNumbersAndThenFadesIn) {
    const auto map = showMap({{10, 10}, {320, 352}});
    ASSERT_TRUE(window.loop.runUntil([&] { return map->alpha() > 0; }));

    EXPECT_EQ(map->alpha(), 1);
    EXPECT_TRUE(window.scene.isAnimating());
    window.finger.wait(0.19);
    EXPECT_TRUE(window.scene.isAnimating()) << "a fifth of a second";
    window.finger.wait(0.02);
    EXPECT_FALSE(window.scene.isAnimating());
}

TEST_F(ColorMap, LayersLieBelowHairlineAndCursorAndShowTheBrightness) {
    const auto map = showMap({{10, 10}, {330, 352}});
    map->setBrightness(0.8);
    ASSERT_TRUE(window.waitForField(*map));

    const auto& layers = map->layer()->sublayers();
    ASSERT_EQ(layers.size(), 4u);
    EXPECT_EQ(layers[0], map->colorMapBackgroundLayer());
    EXPECT_EQ(layers[1], map->colorMapLayer());
    EXPECT_EQ(layers[2], map->lineLayer());
    EXPECT_EQ(layers[3], map->colorCursor()->layer());
    EXPECT_EQ(map->colorMapLayer()->opacity(), 0.8);
    EXPECT_EQ(map->colorMapBackgroundLayer()->opacity(), 1);
    EXPECT_EQ(map->colorMapLayer()->frame(), (CGRect{{0, 0}, {320, 352}}));
    EXPECT_EQ(map->colorMapBackgroundLayer()->frame(), (CGRect{{0, 0}, {320, 352}}));
    EXPECT_EQ(map->colorMapLayer()->contents()->width, 640u);
}

TEST_F(ColorMap, NothingIsDrawnWhileOneOfTheConditionsIsMissing) {
    const auto noTile = makeMap();
    window.show(noTile, {{0, 0}, {64, 64}});
    const auto noLimit = window.keep(ZKColorMapView::alloc()->initWithCoder(archive()));
    noLimit->setTileSize(NSNumber::numberWithInt(16));
    window.show(noLimit, {{0, 0}, {64, 64}});
    const auto empty = showMap({{0, 0}, {64, 0}});
    const auto notLaidOut = makeMap({{0, 0}, {64, 64}});
    notLaidOut->setTileSize(NSNumber::numberWithInt(16));

    // A map that has everything is drawn meanwhile, after which the others would have been.
    const auto complete = showMap({{0, 0}, {64, 64}});
    ASSERT_TRUE(window.waitForField(*complete));

    for (const auto& map : {noTile, noLimit, empty, notLaidOut}) {
        EXPECT_FALSE(map->colorMapLayer());
        EXPECT_EQ(map->alpha(), 0);
    }
}

TEST_F(ColorMap, OneFromAnArchiveIsDrawnOnceItHasBothNumbersAndALayout) {
    const auto map = window.keep(ZKColorMapView::alloc()->initWithCoder(archive()));
    EXPECT_FALSE(map->saturationUpperLimit());
    EXPECT_EQ(map->frame(), (CGRect{{0, 0}, {64, 64}}));
    EXPECT_TRUE(map->backgroundColor()->isEqual(*UIColor::whiteColor()));
    window.show(map, {{0, 0}, {64, 64}});
    map->setTileSize(NSNumber::numberWithInt(16));
    EXPECT_EQ(map->alpha(), 0);

    map->setSaturationUpperLimit(NSNumber::numberWithFloat(0.5f));

    EXPECT_TRUE(window.waitForField(*map));
    map->setColor(hsb(0.5, 1, 1));
    EXPECT_EQ(map->colorCursor()->center(), (CGPoint{8, 8}));
    EXPECT_EQ(map->colorCursor()->transform(), CGAffineTransformMakeTranslation(32, 0));
}

TEST_F(ColorMap, FieldIsNeverDrawnAgain) {
    const auto map = showMap({{0, 0}, {320, 352}});
    ASSERT_TRUE(window.waitForField(*map));
    const auto field = map->colorMapLayer();
    const auto picture = field->contents();

    map->setFrame({{0, 0}, {160, 160}});
    map->setTileSize(NSNumber::numberWithInt(20));
    map->setSaturationUpperLimit(NSNumber::numberWithFloat(0.5f));
    window.finger.settle();
    window.loop.runReady();

    EXPECT_EQ(map->colorMapLayer(), field);
    EXPECT_EQ(field->contents(), picture);
    EXPECT_EQ(field->frame(), (CGRect{{0, 0}, {320, 352}}));
}

TEST_F(ColorMap, FieldThatWasSetBeforeIsShownAndNoneIsDrawn) {
    const auto map = makeMap();
    const auto own = CALayer::layer();
    map->setColorMapLayer(own);
    map->setTileSize(NSNumber::numberWithInt(16));
    window.show(map, {{0, 0}, {320, 352}});

    ASSERT_TRUE(window.waitForField(*map));

    EXPECT_EQ(map->colorMapLayer(), own);
    EXPECT_FALSE(map->colorMapBackgroundLayer());
    EXPECT_EQ(own->superlayer(), map->layer().get());
    EXPECT_EQ(own->opacity(), 0.5);
}

TEST_F(ColorMap, NewTileSizeMovesTheCursorAndChangesWhatTouchesMean) {
    const auto map = showMap({{0, 0}, {320, 352}});
    ASSERT_TRUE(window.waitForField(*map));

    map->setTileSize(NSNumber::numberWithInt(32));
    map->setColor(hsb(0.3, 1, 1));
    EXPECT_EQ(map->colorCursor()->frame(), (CGRect{{2 + 3 * 32, 2}, {28, 28}}));
    EXPECT_EQ(map->intrinsicContentSize(), (CGSize{320, 352}));

    window.finger.tap(CGPoint{33, 1});
    EXPECT_NEAR(hsba(map->color()).hue, 0.1, 1e-14);
}

TEST_F(ColorMap, IntrinsicSizeIsTheFrameCutToWholeTiles) {
    const auto map = makeMap({{0, 0}, {330, 359}});
    map->setTileSize(NSNumber::numberWithInt(16));
    EXPECT_EQ(map->intrinsicContentSize(), (CGSize{320, 352}));
}

TEST_F(ColorMap, BrightnessChangesTheFieldsOpacityAtOnceAndNotTheColour) {
    const auto map = showMap({{0, 0}, {320, 352}});
    ASSERT_TRUE(window.waitForField(*map));
    const auto color = hsb(0.25, 1, 0.5);
    map->setColor(color);

    UIView::animateWithDuration_animations(1, [&] { map->setBrightness(0.25); });
    window.scene.prepareFrame();

    EXPECT_EQ(map->brightness(), 0.25);
    EXPECT_EQ(map->colorMapLayer()->opacity(), 0.25);
    EXPECT_FALSE(window.scene.isAnimating());
    EXPECT_EQ(map->color(), color);
}

TEST_F(ColorMap, SettingTheColourMovesTheCursorAndSendsNothing) {
    const auto map = showMap({{0, 0}, {320, 352}});
    const auto events = EventLog::listeningTo(*map);
    const auto color = hsb(0.5, 1 - float09 * 3 / 21, 0.6);

    map->setColor(color);

    EXPECT_EQ(map->color(), color);
    EXPECT_EQ(map->colorCursor()->color(), color);
    EXPECT_EQ(map->colorCursor()->transform(), CGAffineTransformMakeTranslation(160, 48));
    EXPECT_EQ(events->take(), "");
}

TEST_F(ColorMap, WhiteHasItsCursorBelowTheField) {
    const auto map = showMap({{0, 0}, {320, 320}});
    map->setColor(UIColor::whiteColor());
    EXPECT_EQ(map->colorCursor()->transform(), CGAffineTransformMakeTranslation(0, 21 * 16));
}

TEST_F(ColorMap, HueFromNineHundredSeventyFiveUpHasItsCursorOneColumnOutside) {
    const auto map = showMap({{0, 0}, {320, 320}});
    map->setColor(hsb(0.98, 1, 1));
    EXPECT_EQ(map->colorCursor()->transform().tx, 320);
}

TEST_F(ColorMap, HueExactlyOneHasItsCursorInTheFirstColumn) {
    const auto map = showMap({{0, 0}, {320, 320}});
    // A red with so little blue that its hue, rounded, is a whole turn.
    const auto color = rgb(1, 0, 1e-17);
    ASSERT_EQ(hsba(color).hue, 1);
    map->setColor(color);
    EXPECT_EQ(map->colorCursor()->transform().tx, 0);
}

TEST_F(ColorMap, NilAndPatternColoursStandAtRedWithoutSaturation) {
    const auto map = showMap({{0, 0}, {320, 320}});
    for (const auto& color : {std::shared_ptr<UIColor>(), UIColor::patternColor()}) {
        map->setColor(color);
        EXPECT_EQ(map->colorCursor()->transform(), CGAffineTransformMakeTranslation(0, 21 * 16));
    }
}

TEST_F(ColorMap, LayoutPutsTheCursorWhereItsColourIs) {
    const auto map = showMap({{0, 0}, {320, 320}});
    map->setColor(hsb(0.5, 1, 1));

    map->setFrame({{0, 0}, {160, 320}});
    window.scene.prepareFrame();

    EXPECT_EQ(map->colorCursor()->transform().tx, 80);
}

TEST_F(ColorMap, DegenerateSizesNeitherCrashNorLoop) {
    const std::optional<NSNumber> tiles[] = {NSNumber::numberWithInt(0), NSNumber::numberWithDouble(-16),
                                             NSNumber::numberWithFloat(1e-30f), NSNumber::numberWithDouble(NAN),
                                             NSNumber::numberWithInt(1000)};
    for (const auto& tile : tiles) {
        const auto map = makeMap({{0, 0}, {320, 352}});
        map->setTileSize(tile);
        map->setColor(hsb(0.3, 0.4, 0.5));
        window.show(map, {{0, 0}, {320, 352}});
        EXPECT_TRUE(window.waitForField(*map));
        window.finger.tap(CGPoint{20, 20});
        map->removeFromSuperview();
    }
}

TEST_F(ColorMap, OneRowIsDrawnWithoutWhiteAndATouchInItHasNoSaturationToGive) {
    const auto map = showMap({{0, 0}, {320, 20}});
    ASSERT_TRUE(window.waitForField(*map));
    EXPECT_EQ(map->colorMapLayer()->contents()->pixels.front(), 0xffff0000u);

    window.finger.tap(CGPoint{100, 5});

    EXPECT_TRUE(std::isnan(hsba(map->color()).saturation));
}

TEST_F(ColorMap, FieldWithoutColumnsHasNoPicture) {
    const auto map = showMap({{0, 0}, {10, 320}});
    ASSERT_TRUE(window.waitForField(*map));
    EXPECT_FALSE(map->colorMapLayer()->contents());
    EXPECT_EQ(map->colorMapLayer()->frame(), CGRectZero);
    EXPECT_EQ(map->intrinsicContentSize(), (CGSize{0, 320}));

    window.finger.tap(CGPoint{5, 5}); // hue 0 / 0
    EXPECT_TRUE(map->color());
}
