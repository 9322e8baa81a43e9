// What of a touch on the slider has happened when its events go out, and how the slider is made.

#include "colourpicker/ZKBrightnessCursor.h"
#include "colourpicker/ZKBrightnessSlider.h"
#include "platform/foundation/NSArray.h"
#include "platform/quartz/CAGradientLayer.h"
#include "platform/uikit/UILabel.h"
#include "tests/colourpicker/AtEvent.h"
#include "tests/colourpicker/PickerScene.h"

#include <gtest/gtest.h>

namespace {

double cursorX(const ZKBrightnessSlider& slider) { return slider.brightnessCursor()->center().x; }

class BrightnessSliderOrder : public ::testing::Test {
protected:
    BrightnessSliderOrder() {
        slider->setBrightnessLowerLimit(NSNumber::numberWithDouble(0.4));
        slider->setColor(hsb(0.6, 0.8, 1));
        window.show(slider, {{0, 0}, {268, 31}}); // the track goes from x 28 to 240
    }

    PickerScene window{{400, 400}, 2};
    std::shared_ptr<ZKBrightnessSlider> slider = ZKBrightnessSlider::alloc()->init();
    std::shared_ptr<ScriptedPan> pan = ScriptedPan::on(slider);
};

} // namespace

TEST_F(BrightnessSliderOrder, BothEventsOfATapGoOutWithTheNewBrightnessBeforeTheCursorMoves) {
    std::vector<double> brightness, places;
    const auto watcher = AtEvent::of(*slider, valueChanged | editingEnd, [&] {
        brightness.push_back(slider->brightness()->doubleValue());
        places.push_back(cursorX(*slider));
    });

    window.finger.tap(CGPoint{240, 15});

    const double lowest = 0.4f;
    EXPECT_EQ(brightness, (std::vector<double>{lowest, lowest}));
    EXPECT_EQ(places, (std::vector<double>{28, 28}));
    EXPECT_NEAR(cursorX(*slider), 240, 1e-4);
}

TEST_F(BrightnessSliderOrder, CursorGrowsAfterTheFirstReport) {
    std::vector<bool> enlarged;
    const auto watcher =
        AtEvent::of(*slider, valueChanged, [&] { enlarged.push_back(slider->brightnessCursor()->editing()); });

    pan->send(UIGestureRecognizerStateChanged, CGPoint{100, 15});
    pan->send(UIGestureRecognizerStateChanged, CGPoint{120, 15});

    EXPECT_EQ(enlarged, (std::vector<bool>{false, true}));
}

TEST_F(BrightnessSliderOrder, ChangedWithoutATouchOnlyShrinksTheCursor) {
    pan->send(UIGestureRecognizerStateChanged, CGPoint{100, 15});
    const auto events = EventLog::listeningTo(*slider);
    const double before = slider->brightness()->doubleValue();

    pan->send(UIGestureRecognizerStateChanged, std::nullopt);

    EXPECT_EQ(events->take(), "");
    EXPECT_EQ(slider->brightness()->doubleValue(), before);
    EXPECT_FALSE(slider->brightnessCursor()->editing());
}

TEST_F(BrightnessSliderOrder, TapBeforeItsEndIsIgnored) {
    const auto events = EventLog::listeningTo(*slider);
    ScriptedTap::on(slider)->send(UIGestureRecognizerStateChanged, CGPoint{134, 15});
    EXPECT_EQ(events->take(), "");
    EXPECT_EQ(slider->brightness()->doubleValue(), 1);
}

TEST_F(BrightnessSliderOrder, ColourAndLimitSetFromOutsideSendNothing) {
    const auto events = EventLog::listeningTo(*slider);
    slider->setColor(hsb(0.1, 0.2, 0.5));
    slider->setBrightnessLowerLimit(NSNumber::numberWithDouble(0.2));
    EXPECT_EQ(events->take(), "");
}

TEST_F(BrightnessSliderOrder, TouchesLeaveTheGradientAsItIs) {
    const auto colors = slider->sliderLayer()->colors();
    window.finger.tap(CGPoint{134, 15});
    EXPECT_EQ(slider->sliderLayer()->colors(), colors);
}

TEST_F(BrightnessSliderOrder, CursorShowsTheTouchedBrightnessAndItsPercentage) {
    window.finger.tap(CGPoint{134, 15});
    const ZKBrightnessCursor& cursor = *slider->brightnessCursor();
    EXPECT_EQ(hsba(cursor.color()).brightness, static_cast<double>(slider->brightness()->floatValue()));
    EXPECT_NEAR(hsba(cursor.color()).hue, 0.6, 1e-12);
    EXPECT_EQ(cursor.brightnessLabel()->text(), "69%") << "0.699999988 in single precision, cut";
}

TEST_F(BrightnessSliderOrder, NilColourReadsAsBlack) {
    slider->setColor(nullptr);
    EXPECT_EQ(slider->brightness()->doubleValue(), 0);
    EXPECT_EQ(rgba(slider->color()).red, 0);
    EXPECT_EQ(rgba(slider->color()).alpha, 1);
}

TEST_F(BrightnessSliderOrder, TrackOfANarrowSliderIsNarrowerStill) {
    slider->setFrame({{0, 0}, {40, 31}}); // no bar; 16 less than nothing for the track
    window.scene.prepareFrame();
    EXPECT_EQ(slider->sliderLayer()->frame(), (CGRect{{20, 10}, {0, 11}}));
    EXPECT_EQ(cursorX(*slider), 28);

    slider->setColor(hsb(0.6, 0.8, static_cast<double>(0.4f)));
    EXPECT_NEAR(cursorX(*slider), 12, 1e-5);
}

TEST_F(BrightnessSliderOrder, BarLiesUnderTheCursor) {
    const auto& layers = slider->layer()->sublayers();
    ASSERT_EQ(layers.size(), 2u);
    EXPECT_EQ(layers[0], slider->sliderLayer());
    EXPECT_EQ(layers[1], slider->brightnessCursor()->layer());
}

TEST_F(BrightnessSliderOrder, TapAndPanAreHeardAndNothingElse) {
    const auto& recognizers = slider->gestureRecognizers();
    ASSERT_EQ(recognizers.size(), 2u);
    EXPECT_TRUE(std::dynamic_pointer_cast<UITapGestureRecognizer>(recognizers[0]));
    EXPECT_TRUE(std::dynamic_pointer_cast<UIPanGestureRecognizer>(recognizers[1]));
}

TEST(BrightnessSliderMaking, RimIsOneDevicePixelAtEveryScale) {
    for (const double scale : {1.0, 2.0, 3.0}) {
        const PickerScene window({400, 400}, scale);
        EXPECT_EQ(ZKBrightnessSlider::alloc()->init()->sliderLayer()->borderWidth(), 1 / scale);
    }
}

TEST(BrightnessSliderMaking, KeepsTheFrameItIsMadeWith) {
    EXPECT_EQ(ZKBrightnessSlider::alloc()->initWithFrame({{1, 2}, {300, 31}})->frame(), (CGRect{{1, 2}, {300, 31}}));
}

TEST(BrightnessSliderMaking, OneFromAnArchiveIsBuiltTheSameWay) {
    const auto values = NSMutableDictionary::dictionary();
    values->setObject_forKey(NSArray::arrayWithObjects({NSNumber::numberWithInt(5), NSNumber::numberWithInt(6),
                                                        NSNumber::numberWithInt(268), NSNumber::numberWithInt(31)}),
                             "frame");
    const auto slider = ZKBrightnessSlider::alloc()->initWithCoder(NSCoder::coderWithDictionary(values));

    ASSERT_TRUE(slider);
    EXPECT_EQ(slider->frame(), (CGRect{{5, 6}, {268, 31}}));
    EXPECT_TRUE(slider->backgroundColor()->isEqual(*UIColor::clearColor()));
    EXPECT_EQ(slider->sliderLayer()->superlayer(), slider->layer().get());
    EXPECT_EQ(slider->brightnessCursor()->superview(), slider);
    EXPECT_EQ(slider->gestureRecognizers().size(), 2u);
    EXPECT_FALSE(slider->color());
}
