#include "kit/quartz/PathCoverage.h"

#include "platform/uikit/UIBezierPath.h"
#include "tests/kit/quartz/coverage.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

namespace {

using seat::convexPathCoverage;
using Kind = CGPathElement::Kind;

constexpr seat::PixelRect everything{-1000, -1000, 1000, 1000};

CGPath polygon(const std::vector<CGPoint>& corners) {
    CGPath path;
    for (const CGPoint& corner : corners)
        path.elements.push_back({path.elements.empty() ? Kind::MoveTo : Kind::LineTo, {corner, {}, {}}});
    path.elements.push_back({Kind::Close, {}});
    return path;
}

CGPath oval(CGPoint middle, double radius) {
    // As UIBezierPath makes it.
    const double k = 0.5522847498307936 * radius;
    const auto at = [&](double x, double y) { return CGPoint{middle.x + x, middle.y + y}; };
    CGPath path;
    path.elements.push_back({Kind::MoveTo, {at(radius, 0), {}, {}}});
    path.elements.push_back({Kind::CurveTo, {at(radius, k), at(k, radius), at(0, radius)}});
    path.elements.push_back({Kind::CurveTo, {at(-k, radius), at(-radius, k), at(-radius, 0)}});
    path.elements.push_back({Kind::CurveTo, {at(-radius, -k), at(-k, -radius), at(0, -radius)}});
    path.elements.push_back({Kind::CurveTo, {at(k, -radius), at(radius, -k), at(radius, 0)}});
    return path;
}

TEST(PathCoverage, CurvesAreAsRoundAsADisc) {
    const auto covered = convexPathCoverage(oval({20.2, 19.9}, 18), CGAffineTransformIdentity, everything);
    ASSERT_TRUE(covered);
    const test::CoveredPixels pixels(*covered->runs, 40, 40, covered->x, covered->y);
    // A curve of that kind is itself up to a thousandth of the radius beside the circle.
    for (int y = 0; y < 40; ++y)
        for (int x = 0; x < 40; ++x)
            ASSERT_NEAR(pixels.at(x, y), test::discInPixel({20.2, 19.9}, 18, x, y), 0.015) << x << ' ' << y;
}

TEST(PathCoverage, PathThatNeedsARuleForFillingIsLeftToOthers) {
    EXPECT_TRUE(convexPathCoverage(polygon({{0, 0}, {9, 0}, {9, 9}, {0, 9}}), CGAffineTransformIdentity, everything));
    EXPECT_TRUE(convexPathCoverage(polygon({{0, 9}, {9, 9}, {9, 0}, {0, 0}}), CGAffineTransformIdentity, everything));
    const std::vector<CGPoint> dented{{0, 0}, {9, 0}, {4, 4}, {9, 9}, {0, 9}};
    EXPECT_FALSE(convexPathCoverage(polygon(dented), CGAffineTransformIdentity, everything));
    std::vector<CGPoint> star, twice;
    for (int i = 0; i < 5; ++i) {
        const double turn = i * 4 * std::numbers::pi / 5;
        star.push_back({10 + 9 * std::cos(turn), 10 + 9 * std::sin(turn)});
    }
    EXPECT_FALSE(convexPathCoverage(polygon(star), CGAffineTransformIdentity, everything));
    for (int i = 0; i < 8; ++i) twice.push_back({i % 4 == 1 || i % 4 == 2 ? 9.0 : 0.0, i % 4 >= 2 ? 9.0 : 0.0});
    EXPECT_FALSE(convexPathCoverage(polygon(twice), CGAffineTransformIdentity, everything));
    CGPath two = polygon({{0, 0}, {9, 0}, {9, 9}});
    for (const auto& element : polygon({{20, 0}, {29, 0}, {29, 9}}).elements) two.elements.push_back(element);
    EXPECT_FALSE(convexPathCoverage(two, CGAffineTransformIdentity, everything));
}

TEST(PathCoverage, SamePathAtOtherWholePixelsComesFromMemory) {
    const CGPath path = oval({10, 10}, 7);
    const auto here = convexPathCoverage(path, CGAffineTransformMakeTranslation(3.5, 4), everything);
    const auto there = convexPathCoverage(path, CGAffineTransformMakeTranslation(103.5, -6), everything);
    const auto between = convexPathCoverage(path, CGAffineTransformMakeTranslation(103.25, -6), everything);
    ASSERT_TRUE(here && there && between);
    EXPECT_EQ(here->runs, there->runs);
    EXPECT_NE(here->runs, between->runs);
    EXPECT_EQ(there->x - here->x, 100);
    EXPECT_EQ(there->y - here->y, -10);
}

TEST(PathCoverage, LargePathIsOnlyFollowedInsideTheClip) {
    const CGPath path = polygon({{-5e5, -5e5}, {5e5, -5e5}, {5e5, 5e5}, {-5e5, 5e5}});
    const auto covered = convexPathCoverage(path, CGAffineTransformIdentity, {10, 10, 14, 13});
    ASSERT_TRUE(covered);
    EXPECT_EQ(test::CoveredPixels(*covered->runs, 30, 30, covered->x, covered->y).sum(), 12);
}

TEST(PathCoverage, PathWithoutPointsCoversNothing) {
    for (const CGPath& path : {CGPath{}, polygon({{3, 3}}), polygon({{3, 3}, {9, 9}})})
        if (const auto covered = convexPathCoverage(path, CGAffineTransformIdentity, everything))
            EXPECT_TRUE(covered->runs->empty());
}

} // namespace
