#include "kit/quartz/rounded_coverage.h"

#include "tests/kit/quartz/coverage.h"

#include <gtest/gtest.h>

#include <numbers>

namespace {

using seat::roundedCoverage;
using seat::RoundedShape;
using test::CoveredPixels;

TEST(RoundedCoverage, SameShapeElsewhereComesFromMemory) {
    const auto here = roundedCoverage({10.5, 3, 38.5, 31, 14, 0, 0}, {10, 3, 39, 31});
    const auto there = roundedCoverage({110.5, 43, 138.5, 71, 14, 0, 0}, {110, 43, 139, 71});
    EXPECT_EQ(here, there);
    EXPECT_NE(here, roundedCoverage({110.25, 43, 138.25, 71, 14, 0, 0}, {110, 43, 139, 71}));
    EXPECT_NE(here, roundedCoverage({110.5, 43, 138.5, 71, 14, 0, 1}, {110, 43, 139, 71}));
    EXPECT_NE(here, roundedCoverage({110.5, 43, 138.5, 71, 14, 1, 0}, {110, 43, 139, 71}));
}

TEST(RoundedCoverage, CornerOfALongBarIsThatOfAShortOne) {
    const seat::PixelRect corner{0, 0, 6, 6};
    EXPECT_EQ(roundedCoverage({0, 0, 300, 40, 6, 0.5, 0}, corner), roundedCoverage({0, 0, 60, 20, 6, 0.5, 0}, corner));
    EXPECT_NE(roundedCoverage({0, 0, 300, 40, 6, 0.5, 0}, corner), roundedCoverage({0, 0, 12, 12, 6, 0.5, 0}, corner));
}

TEST(RoundedCoverage, MemoryForgetsWhatWasNotUsedForLongest) {
    const seat::PixelRect pixels{0, 0, 40, 40};
    const auto kept = roundedCoverage({0, 0, 40, 40, 20, 0, 0}, pixels);
    const std::weak_ptr forgotten = roundedCoverage({0, 0, 39, 39, 19, 0, 0}, pixels);
    for (int i = 0; i < 200; ++i) {
        roundedCoverage({0, 0, 40, 40, 20, i / 400.0, 0}, pixels);
        EXPECT_EQ(roundedCoverage({0, 0, 40, 40, 20, 0, 0}, pixels), kept);
    }
    EXPECT_TRUE(forgotten.expired());
}

TEST(RoundedCoverage, FrameIsTheDiscWithoutTheSmallerOne) {
    const CGPoint middle{14.5, 14};
    for (const double width : {1.0, 2.0, 3.0, 20.0}) {
        const CoveredPixels frame(*roundedCoverage({middle.x - 14, 0, middle.x + 14, 28, 14, 0, width}, {0, 0, 29, 28}),
                                  29, 28);
        for (int y = 0; y < 28; ++y)
            for (int x = 0; x < 29; ++x) {
                const double inner = width < 14 ? test::discInPixel(middle, 14 - width, x, y) : 0;
                ASSERT_NEAR(frame.at(x, y), test::discInPixel(middle, 14, x, y) - inner, 2.0 / 255)
                    << width << ' ' << x << ' ' << y;
            }
    }
}

TEST(RoundedCoverage, CornersOfABarTogetherWithItsMiddleAreTheWholeBar) {
    const RoundedShape bar{3, 2, 53, 22, 7, 0, 0};
    const CoveredPixels whole(*roundedCoverage(bar, {0, 0, 60, 30}), 60, 30);
    for (const CGPoint at : {CGPoint{3, 2}, CGPoint{46, 2}, CGPoint{3, 15}, CGPoint{46, 15}}) {
        const int left = static_cast<int>(at.x), top = static_cast<int>(at.y);
        const CoveredPixels corner(*roundedCoverage(bar, {left, top, left + 7, top + 7}), 60, 30, left, top);
        for (int y = top; y < top + 7; ++y)
            for (int x = left; x < left + 7; ++x) ASSERT_EQ(corner.at(x, y), whole.at(x, y)) << x << ' ' << y;
    }
    EXPECT_NEAR(whole.sum(), 50 * 20 - (4 - std::numbers::pi) * 49, 0.1);
}

} // namespace
