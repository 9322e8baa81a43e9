#include "colourpicker/ZKColorCursor.h"
#include "colourpicker/ZKColorMapView.h"
#include "tests/colourpicker/PickerScene.h"

#include <gtest/gtest.h>

namespace {

// A map of 20 columns and 22 rows at (10, 100) of the window.
class ColorMapTouches : public ::testing::Test {
protected:
    ColorMapTouches() {
        map->setTileSize(NSNumber::numberWithInt(16));
        map->setBrightness(1);
        window.show(map, {{10, 100}, {320, 352}});
        window.waitForField(*map);
        // What other tests dragged to last is still remembered; from here on it is a place of this test.
        ScriptedPan::on(map)->send(UIGestureRecognizerStateChanged, CGPoint{8, 8});
        ScriptedPan::on(map)->send(UIGestureRecognizerStateEnded, std::nullopt);
        events->take();
    }
    static CGPoint inWindow(double x, double y) { return {10 + x, 100 + y}; }
    void expectTile(double column, double row) {
        const HSBA color = hsba(map->color());
        EXPECT_NEAR(color.hue, column / 20, 1e-12);
        EXPECT_NEAR(color.saturation, 1 - float09 * row / 21, 1e-12);
        EXPECT_EQ(color.alpha, 1);
    }

    PickerScene window;
    std::shared_ptr<ZKColorMapView> map = ZKColorMapView::colorMapWithFrame_saturationUpperLimit(CGRectZero, 0.9);
    std::shared_ptr<EventLog> events = EventLog::listeningTo(*map);
};

} // namespace

TEST_F(ColorMapTouches, TapChoosesTheTileAndEndsEditingBeforeItReportsTheValue) {
    window.finger.tap(inWindow(5 * 16 + 3, 7 * 16 + 12));

    expectTile(5, 7);
    EXPECT_EQ(events->take(), "editing-end value");
    EXPECT_EQ(map->colorCursor()->transform(), CGAffineTransformMakeTranslation(80, 112));
    EXPECT_FALSE(map->colorCursor()->editing());
}

TEST_F(ColorMapTouches, ColourOfATapHasTheBrightnessSetFromOutside) {
    map->setBrightness(0.625);
    window.finger.tap(inWindow(40, 40));
    EXPECT_EQ(hsba(map->color()).brightness, 0.625);
}

TEST_F(ColorMapTouches, BlackBrightnessMakesEveryTouchedColourBlack) {
    map->setBrightness(0);
    window.finger.tap(inWindow(100, 40));
    EXPECT_EQ(hsba(map->color()).brightness, 0);
    EXPECT_EQ(hsba(map->color()).hue, 0);
}

TEST_F(ColorMapTouches, DragReportsEachMoveAndThenItsLastPlaceOnceMore) {
    window.finger.press(inWindow(8, 8));
    window.finger.move(inWindow(30, 8)); // begins here: not yet reported
    EXPECT_EQ(events->take(), "");
    window.finger.move(inWindow(40, 8));
    expectTile(2, 0);
    EXPECT_TRUE(map->colorCursor()->editing());
    window.finger.move(inWindow(90, 60));
    EXPECT_EQ(events->take(), "value value");

    window.finger.release();

    expectTile(5, 3);
    EXPECT_EQ(events->take(), "editing-end value");
    EXPECT_FALSE(map->colorCursor()->editing());
}

TEST_F(ColorMapTouches, PanThatEndsWithNoTouchesReplaysTheLastPoint) {
    window.finger.drag(inWindow(8, 8), inWindow(200, 200));
    expectTile(12, 12);
    events->take();

    ScriptedPan::on(map)->send(UIGestureRecognizerStateEnded, std::nullopt);

    expectTile(12, 12);
    EXPECT_EQ(events->take(), "editing-end value");
}

TEST_F(ColorMapTouches, AClickWithAShakyHandIsADragToItsOwnPlace) {
    window.finger.drag(inWindow(8, 8), inWindow(200, 200));
    events->take();

    for (const CGPoint shake : {CGPoint{8, 1}, CGPoint{6, 6}}) {
        window.finger.press(inWindow(300, 40));
        window.finger.move(inWindow(300 + shake.x, 40 + shake.y));
        window.finger.release();

        expectTile(19, 2);
        EXPECT_EQ(events->take(), "value editing-end value");
        EXPECT_FALSE(map->colorCursor()->editing());
    }
}

TEST_F(ColorMapTouches, LastPointIsSharedByAllMaps) {
    const auto other = window.keep(ZKColorMapView::colorMapWithFrame_saturationUpperLimit(CGRectZero, 0.9));
    other->setTileSize(NSNumber::numberWithInt(16));
    other->setBrightness(1);
    window.show(other, {{10, 500}, {320, 160}});
    window.waitForField(*other);

    window.finger.drag(inWindow(8, 8), inWindow(200, 100));
    ScriptedPan::on(other)->send(UIGestureRecognizerStateEnded, std::nullopt);

    EXPECT_NEAR(hsba(other->color()).hue, 12.0 / 20, 1e-12);
}

TEST_F(ColorMapTouches, PanThatEndsWithItsFingerDownReportsThereAndStaysEnlarged) {
    const auto pan = ScriptedPan::on(map);
    pan->send(UIGestureRecognizerStateChanged, CGPoint{50, 50});
    EXPECT_EQ(events->take(), "value");

    pan->send(UIGestureRecognizerStateEnded, CGPoint{100, 50});

    EXPECT_EQ(events->take(), "editing-end value");
    expectTile(6, 3);
    EXPECT_TRUE(map->colorCursor()->editing());
}

TEST_F(ColorMapTouches, BeganAndCancelledAreIgnored) {
    const auto pan = ScriptedPan::on(map);
    const auto before = map->color();
    pan->send(UIGestureRecognizerStateBegan, CGPoint{50, 50});
    pan->send(UIGestureRecognizerStateCancelled, std::nullopt);
    EXPECT_EQ(map->color(), before);
    EXPECT_EQ(events->take(), "");
}

TEST_F(ColorMapTouches, ChangedWithoutATouchReplaysTheLastPointAndDoesNotEndEditing) {
    const auto pan = ScriptedPan::on(map);
    pan->send(UIGestureRecognizerStateChanged, CGPoint{50, 50});
    events->take();

    pan->send(UIGestureRecognizerStateChanged, std::nullopt);

    EXPECT_EQ(events->take(), "value");
    EXPECT_FALSE(map->colorCursor()->editing());
}

TEST_F(ColorMapTouches, TapWithoutATouchOrBeforeItsEndIsIgnored) {
    const auto before = map->color();
    ScriptedTap::on(map)->send(UIGestureRecognizerStateEnded, std::nullopt);
    ScriptedTap::on(map)->send(UIGestureRecognizerStateChanged, CGPoint{50, 50});
    EXPECT_EQ(map->color(), before);
    EXPECT_EQ(events->take(), "");
}

TEST_F(ColorMapTouches, PointsOutsideAreDroppedAndNotMovedIn) {
    window.finger.press(inWindow(8, 8));
    window.finger.move(inWindow(40, 8));
    window.finger.move(inWindow(100, 8));
    events->take();

    window.finger.move(inWindow(100, -30));
    window.finger.move(inWindow(330, 50));
    window.finger.move(inWindow(320, 50));
    window.finger.release();

    expectTile(6, 0);
    EXPECT_EQ(events->take(), "") << "also the end: the last place was outside";
    EXPECT_FALSE(map->colorCursor()->editing());
}

TEST_F(ColorMapTouches, PartialTilesBeyondTheFieldGiveHueOneAndSaturationBelowTheLowest) {
    map->setFrame({{10, 100}, {330, 360}});
    window.scene.prepareFrame();

    window.finger.tap(inWindow(325, 355));

    EXPECT_EQ(events->take(), "editing-end value");
    const RGBA color = rgba(map->color());
    EXPECT_NEAR(color.green, float09 * 22 / 21, 1e-12) << "hue 1 is red";
    EXPECT_NEAR(hsba(map->color()).saturation, 1 - float09 * 22 / 21, 1e-12);
}

TEST_F(ColorMapTouches, InvisibleMapTakesNoTouches) {
    const auto hidden = window.keep(ZKColorMapView::colorMapWithFrame_saturationUpperLimit(CGRectZero, 0.9));
    const auto heard = EventLog::listeningTo(*hidden);
    window.show(hidden, {{10, 500}, {320, 160}}); // no tile size: its field is not drawn
    window.finger.tap(CGPoint{100, 550});
    EXPECT_EQ(heard->take(), "");
}

TEST_F(ColorMapTouches, CursorLetsTouchesThroughToTheMap) {
    map->setColor(hsb(0.5, 1, 1));
    window.finger.tap(inWindow(168, 8));
    expectTile(10, 0);
    EXPECT_EQ(events->take(), "editing-end value");
}
