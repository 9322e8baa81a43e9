// A brightness change makes colours and nothing else. Counts every allocation of the process, so it is a program alone.

#include "colourpicker/ZKBrightnessSlider.h"
#include "colourpicker/ZKColorMapView.h"
#include "colourpicker/ZKColorPickerView.h"
#include "platform/foundation/id.h"
#include "tests/colourpicker/PickerScene.h"
#include "tests/support/counted_allocations.h"

#include <gtest/gtest.h>

namespace {

template <class Change> long allocationsOf(const Change& change) {
    const long before = testing_support::allocations;
    change();
    return testing_support::allocations - before;
}

} // namespace

TEST(BrightnessAllocations, NewBrightnessOfTheMapTakesNone) {
    PickerScene window;
    const auto map = ZKColorMapView::colorMapWithFrame_saturationUpperLimit(CGRectZero, 0.9);
    map->setTileSize(NSNumber::numberWithInt(16));
    window.show(map, {{0, 0}, {320, 352}});
    ASSERT_TRUE(window.waitForField(*map));
    map->setBrightness(0.9); // the first damage of a frame makes the list of damages

    for (int i = 0; i < 10; ++i) EXPECT_EQ(allocationsOf([&] { map->setBrightness(i * 0.1); }), 0) << i;
}

TEST(BrightnessAllocations, NewColourOfTheMapTakesNone) {
    PickerScene window;
    const auto map = ZKColorMapView::colorMapWithFrame_saturationUpperLimit(CGRectZero, 0.9);
    map->setTileSize(NSNumber::numberWithInt(16));
    window.show(map, {{0, 0}, {320, 352}});
    ASSERT_TRUE(window.waitForField(*map));
    const auto color = hsb(0.5, 1, 0.9);
    const auto dimmer = hsb(0.5, 1, 0.8);
    map->setColor(color);

    EXPECT_EQ(allocationsOf([&] { map->setColor(dimmer); }), 0);
}

TEST(BrightnessAllocations, BrightnessOfThePickerTakesThoseOfItsTwoNewColours) {
    PickerScene window{{320, 460}};
    const auto picker = ZKColorPickerView::alloc()->init();
    window.show(picker, {{0, 0}, {320, 460}});
    const auto map = window.keep(std::static_pointer_cast<ZKColorMapView>(picker->colorMapView().view()));
    ASSERT_TRUE(window.waitForField(*map));
    const auto slider = std::static_pointer_cast<ZKBrightnessSlider>(picker->brightnessSlider().view());
    const auto brightnessChanged = [&] { objc_msgSend(*picker, "brightnessChanged:", {id(slider)}); };
    picker->setColor(hsb(0.5, 1, 0.9)); // nothing that is pale, for which the cursor would take other colours
    brightnessChanged();
    slider->setColor(hsb(0.5, 1, 0.6));

    std::shared_ptr<UIColor> one, other;
    const long ofTwoColours = allocationsOf([&] {
        one = picker->color();
        other = picker->color();
    });
    EXPECT_GT(ofTwoColours, 0);
    EXPECT_EQ(allocationsOf(brightnessChanged), ofTwoColours);
    EXPECT_NEAR(hsba(picker->color()).brightness, 0.6, 1e-6);
}
