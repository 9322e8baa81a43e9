// What the picker takes from the gestures on its parts, and what it reports of them.

#include "colourpicker/ZKBrightnessCursor.h"
#include "platform/uikit/UIColor.h"
#include "tests/colourpicker/ColorPicker.h"

namespace {
constexpr double float04 = 0.4f;
}

TEST_F(ColorPicker, SetColourReachesThePartsAndSendsNothing) {
    show();
    const auto client = clientOf(*picker);
    picker->setColor(hsb(0.25, 0.5, 0.625));

    EXPECT_NEAR(hsba(map().color()).hue, 0.25, 1e-12);
    EXPECT_EQ(map().brightness(), 0.625);
    EXPECT_EQ(slider().brightness()->doubleValue(), 0.625);
    EXPECT_NEAR(hsba(info().color()).saturation, 0.5, 1e-12);
    EXPECT_TRUE(client->heard.empty());
}

TEST_F(ColorPicker, SliderDragChangesMapAndSwatchAtOnceAndReportsNothing) {
    picker->setColor(hsb(0.6, 0.8, 1));
    show();
    const auto client = clientOf(*picker);

    window.finger.press(onTrack(0));
    window.finger.move(onTrack(0.2));
    window.finger.move(onTrack(0.5));
    EXPECT_NEAR(map().brightness(), 0.7, 1e-6);
    EXPECT_NEAR(map().colorMapLayer()->opacity(), 0.7, 1e-6);
    EXPECT_NEAR(hsba(info().color()).brightness, 0.7, 1e-6);
    EXPECT_NEAR(hsba(map().color()).brightness, 0.7, 1e-6);
    window.finger.release();

    EXPECT_NEAR(color().brightness, 0.7, 1e-6);
    EXPECT_TRUE(client->heard.empty()) << "the slider's drag ends without a word";
}

TEST_F(ColorPicker, BrightnessIsTakenInSinglePrecision) {
    picker->setColor(hsb(0.6, 0.8, 1));
    show();
    window.finger.tap(onTrack(0.5));
    EXPECT_EQ(color().brightness, static_cast<double>(slider().brightness()->floatValue()));
    EXPECT_NE(color().brightness, slider().brightness()->doubleValue());
}

TEST_F(ColorPicker, TapReportsTheColourFromBeforeIt) {
    picker->setColor(hsb(0.6, 0.8, 1));
    show();
    const auto client = clientOf(*picker);

    window.finger.tap(onTile(5, 0));

    ASSERT_EQ(client->heard.size(), 1u);
    EXPECT_NEAR(client->heard[0].hue, 0.6, 1e-12);
    EXPECT_NEAR(color().hue, 0.25, 1e-12) << "the tapped colour is shown, and reported by the next gesture";
}

TEST_F(ColorPicker, MapDragReportsItsLastColourOnceAtTheEnd) {
    picker->setColor(hsb(0.6, 0.8, 1));
    show();
    const auto client = clientOf(*picker);

    window.finger.drag(onTile(1, 0), onTile(5, 0));

    ASSERT_EQ(client->heard.size(), 1u);
    EXPECT_NEAR(client->heard[0].hue, 0.25, 1e-12);
}

TEST_F(ColorPicker, TapAfterASliderDragReportsTheDraggedBrightness) {
    picker->setColor(hsb(0.6, 0.8, 1));
    show();
    const auto client = clientOf(*picker);
    window.finger.drag(onTrack(0), onTrack(0.5));

    window.finger.tap(onTrack(0.75));

    ASSERT_EQ(client->heard.size(), 1u);
    EXPECT_NEAR(client->heard[0].brightness, 0.7, 1e-6);
    EXPECT_NEAR(color().brightness, 0.55, 1e-6);
}

TEST_F(ColorPicker, MapDragThatEndsOutsideReportsNothing) {
    picker->setColor(hsb(0.6, 0.8, 1));
    show();
    const auto client = clientOf(*picker);
    window.finger.drag(onTile(1, 5), onTile(5, -5));
    EXPECT_TRUE(client->heard.empty());
    EXPECT_NE(color().hue, 0.6);
}

TEST_F(ColorPicker, TwoGesturesTenMillisecondsApartBothReport) {
    show();
    const auto client = clientOf(*picker);
    const auto tap = ScriptedTap::on(picker->colorMapView().view());
    tap->send(UIGestureRecognizerStateEnded, CGPoint{8, 8});
    window.clock.advance(0.01);
    tap->send(UIGestureRecognizerStateEnded, CGPoint{80, 8});
    EXPECT_EQ(client->heard.size(), 2u);
}

TEST_F(ColorPicker, TimeOfAReportIsKeptWhenTheOneKeptBeforeIsMoreThanAFifteenthOfASecondAgo) {
    struct Case {
        platform::timeval made;
        platform::timeval reported;
        bool isKept;
    };
    const Case cases[] = {
        {{100, 0}, {100, 66666}, false},      {{100, 0}, {100, 66667}, true},
        {{100, 950000}, {101, 10000}, false}, {{100, 950000}, {101, 16666}, false},
        {{100, 950000}, {101, 16667}, true},  {{100, 0}, {101, 0}, true},
        {{100, 999999}, {102, 0}, true},      {{100, 500000}, {100, 499999}, false},
        {{100, 0}, {99, 999999}, false},
    };
    const auto written = [](platform::timeval time) { return time.tv_sec * 1'000'000 + time.tv_usec; };
    for (const auto& [made, reported, isKept] : cases) {
        window.clock.setTimeOfDay(made);
        picker = ZKColorPickerView::alloc()->init();
        EXPECT_EQ(written(picker->lastDrawTime()), written(made));
        EXPECT_EQ(written(picker->waitTimeDuration()), 66666);

        window.clock.setTimeOfDay(reported);
        objc_msgSend(*picker, "sendActions", {});

        EXPECT_EQ(written(picker->lastDrawTime()), written(isKept ? reported : made)) << written(reported);
    }
}

TEST_F(ColorPicker, ReportsGoOutWhateverTheClockDoes) {
    show();
    const auto client = clientOf(*picker);
    const auto tap = ScriptedTap::on(picker->colorMapView().view());
    for (const platform::timeval time : {platform::timeval{5, 0}, platform::timeval{4, 999999},
                                         platform::timeval{2000000000, 1}, platform::timeval{2000000000, 66667}}) {
        window.clock.setTimeOfDay(time);
        tap->send(UIGestureRecognizerStateEnded, CGPoint{8, 8});
    }
    EXPECT_EQ(client->heard.size(), 4u);
}

TEST_F(ColorPicker, BlackHasItsSliderCursorBeyondTheBarAndATapOnTheSliderRepairsTheBrightness) {
    picker->setColor(UIColor::blackColor());
    show();
    EXPECT_GT(slider().brightnessCursor()->center().x, 240);

    window.finger.tap(onTile(5, 3));
    EXPECT_EQ(color().brightness, 0) << "a black field gives black";

    window.finger.tap(onTrack(0));
    EXPECT_EQ(color().brightness, 1);
    EXPECT_EQ(color().hue, 0) << "hue begins again at red";
}

TEST_F(ColorPicker, DarkestOfTheSliderIsFourTenths) {
    show();
    picker->setColor(hsb(0.5, 1, 1));
    window.finger.tap(onTrack(1.05));
    EXPECT_EQ(color().brightness, float04);
}
