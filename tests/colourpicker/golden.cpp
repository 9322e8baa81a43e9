// The picker as it looks: five colours, three scales, three sizes. JOYVANE_UPDATE_GOLDEN=1 makes the pictures anew.

#include "tests/support/golden.h"
#include "colourpicker/ZKColorMapView.h"
#include "colourpicker/ZKColorPickerView.h"
#include "kit/uikit/snapshot.h"
#include "ledcolour/hex_colour.h"
#include "platform/uikit/UIColor.h"
#include "tests/colourpicker/PickerScene.h"

#include <gtest/gtest.h>

#include <tuple>

namespace {

struct Size {
    const char* name;
    CGSize points;
};
constexpr Size sizes[] = {{"small", {320, 416}}, {"phone", {375, 623}}, {"tall", {480, 640}}};
constexpr const char* colors[] = {"004EFD", "ffffff", "000000", "e8c8b0", "1f7a33"};

// Text is drawn by the fonts of the machine; everything else is exact to a step or two.
constexpr testing_support::PictureTolerance tolerance{.channel = 3, .share = 0.001};

class PickerPicture : public ::testing::TestWithParam<std::tuple<int, int, int>> {};

} // namespace

TEST_P(PickerPicture, IsAsDrawnBefore) {
    const auto [colorIndex, scale, sizeIndex] = GetParam();
    const Size& size = sizes[sizeIndex];
    const std::string color = colors[colorIndex];
    PickerScene window{size.points, static_cast<double>(scale)};
    const auto picker = ZKColorPickerView::alloc()->init();
    picker->setColor(JVNColorForHexString(color));
    window.show(picker, {{0, 0}, size.points});
    ASSERT_TRUE(window.waitForField(*std::static_pointer_cast<ZKColorMapView>(picker->colorMapView().view())));

    const std::string name = color + "-" + size.name + "@" + std::to_string(scale) + "x";
    EXPECT_EQ(testing_support::compareWithGolden(seat::snapshot(window.scene), PICKER_PICTURES, name, PICKER_FAILURES,
                                                 tolerance),
              "");
}

INSTANTIATE_TEST_SUITE_P(All, PickerPicture,
                         ::testing::Combine(::testing::Range(0, 5), ::testing::Range(1, 4), ::testing::Range(0, 3)));
