#include "kit/quartz/GradientRows.h"

#include "tests/kit/quartz/Surface.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using seat::GradientRows;
using test::rgb;

TEST(GradientRows, EveryPixelIsTheColourAtItsMiddle) {
    const std::vector<CGColorRef> colors{rgb(1, 0.2, 0), rgb(0.4, 0.4, 0.9), rgb(0, 1, 0.5)};
    GradientRows rows({10, 4}, {70, 34}, colors, 1, {0, 0, 80, 40});
    for (int y = 0; y < 40; ++y)
        for (int x = 0; x < 80; ++x) {
            const double part = ((x + 0.5 - 10) * 60 + (y + 0.5 - 4) * 30) / (60 * 60 + 30 * 30);
            const double at = std::clamp(part, 0.0, 1.0) * 2;
            const auto& from = *colors[at < 1 ? 0 : 1];
            const auto& to = *colors[at < 1 ? 1 : 2];
            const double share = at < 1 ? at : at - 1;
            const std::uint32_t pixel = rows.at(0, y)[x];
            ASSERT_NEAR(test::redOf(pixel), 255 * (from.red + (to.red - from.red) * share), 0.51) << x << ' ' << y;
            ASSERT_NEAR(test::greenOf(pixel), 255 * (from.green + (to.green - from.green) * share), 0.51);
            ASSERT_NEAR(test::blueOf(pixel), 255 * (from.blue + (to.blue - from.blue) * share), 0.51);
            ASSERT_EQ(test::alphaOf(pixel), 255);
        }
}

TEST(GradientRows, LevelGradientIsMadeOnceForAllRows) {
    GradientRows rows({0, 5}, {20, 5}, std::vector<CGColorRef>{rgb(0, 0, 0), rgb(1, 1, 1)}, 1, {2, 0, 20, 40});
    const std::uint32_t* const first = rows.at(2, 0);
    const std::uint32_t left = first[0];
    EXPECT_EQ(rows.at(2, 39), first);
    EXPECT_EQ(rows.at(12, 39), first + 10);
    EXPECT_EQ(rows.at(2, 39)[0], left);
}

TEST(GradientRows, NilIsTransparentAndColoursFadeToItPremultiplied) {
    GradientRows rows({0, 0}, {10, 0}, std::vector<CGColorRef>{rgb(1, 0, 0), nullptr}, 1, {0, 0, 11, 1});
    for (int x = 0; x < 10; ++x) {
        const std::uint32_t pixel = rows.at(x, 0)[0];
        EXPECT_EQ(test::redOf(pixel), test::alphaOf(pixel)) << x;
        EXPECT_NEAR(test::alphaOf(pixel), 255 * (1 - (x + 0.5) / 10), 0.51) << x;
    }
    EXPECT_EQ(rows.at(10, 0)[0], 0U);
}

TEST(GradientRows, PointsInOnePlaceGiveTheFirstColour) {
    GradientRows rows({4, 4}, {4, 4}, std::vector<CGColorRef>{rgb(1, 0, 0), rgb(0, 1, 0)}, 1, {0, 0, 9, 9});
    EXPECT_EQ(rows.at(0, 0)[0], test::red);
    EXPECT_EQ(rows.at(8, 8)[0], test::red);
}

} // namespace
