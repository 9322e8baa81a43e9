#include "tests/kit/quartz/coverage.h"

#include "kit/quartz/geometry.h"
#include "tests/kit/quartz/Surface.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

namespace {

using seat::Coverage;
using seat::CoveredRun;
using seat::Outline;
using seat::roundedOutline;
using test::CoveredPixels;

constexpr double aStep = 1.0 / 255;

CoveredPixels covered(const Outline& outline, int width, int height) {
    Coverage coverage({0, 0, width, height});
    coverage.add(outline);
    return {*coverage.runs(), width, height};
}

Outline turnedSquare(double edge, double angle, CGPoint middle) {
    return seat::transformed(roundedOutline(-edge / 2, -edge / 2, edge / 2, edge / 2, 0),
                             CGAffineTransformConcat(CGAffineTransformMakeRotation(angle),
                                                     CGAffineTransformMakeTranslation(middle.x, middle.y)));
}

TEST(Coverage, EdgeBetweenPixelsCoversItsShareOfThem) {
    const auto pixels = covered(roundedOutline(1.25, 1.5, 4.5, 3, 0), 6, 4);
    EXPECT_NEAR(pixels.at(1, 1), 0.75 * 0.5, 1e-4);
    EXPECT_NEAR(pixels.at(2, 1), 0.5, 1e-4);
    EXPECT_NEAR(pixels.at(4, 1), 0.5 * 0.5, 1e-4);
    EXPECT_NEAR(pixels.at(1, 2), 0.75, 1e-4);
    EXPECT_EQ(pixels.at(2, 2), 1);
    EXPECT_EQ(pixels.at(0, 2), 0);
    EXPECT_EQ(pixels.at(5, 2), 0);
    EXPECT_EQ(pixels.at(2, 3), 0);
    EXPECT_NEAR(pixels.sum(), 3.25 * 1.5, 1e-3);
}

TEST(Coverage, DiscIsItsTrueAreaInEveryPixelWithinAStep) {
    for (const double radius : {0.4, 1.0, 2.5, 8.5, 14.0, 22.4, 67.2}) {
        for (const double shift : {0.0, 0.5, 0.37}) {
            const CGPoint middle{radius + 1 + shift, radius + 1 + shift / 2};
            const int edge = static_cast<int>(2 * radius) + 4;
            const auto pixels = covered(
                roundedOutline(middle.x - radius, middle.y - radius, middle.x + radius, middle.y + radius, radius),
                edge, edge);
            for (int y = 0; y < edge; ++y)
                for (int x = 0; x < edge; ++x)
                    ASSERT_NEAR(pixels.at(x, y), test::discInPixel(middle, radius, x, y), 1.2 * aStep)
                        << radius << ' ' << shift << ' ' << x << ' ' << y;
            EXPECT_NEAR(pixels.sum(), std::numbers::pi * radius * radius, 0.002 * edge);
        }
    }
}

TEST(Coverage, TurnedSquareCoversItsArea) {
    for (int i = 0; i < 90; ++i) {
        const auto pixels = covered(turnedSquare(20.5, i * std::numbers::pi / 180, {20.3, 19.9}), 40, 40);
        ASSERT_NEAR(pixels.sum(), 20.5 * 20.5, 0.01) << i;
        for (const double part : pixels.parts) ASSERT_TRUE(part >= 0 && part <= 1) << i;
    }
}

TEST(Coverage, PartOfAShapeIsTheSameAsInTheWhole) {
    const Outline shape = turnedSquare(30, 0.4, {25, 25});
    const auto whole = covered(shape, 50, 50);
    for (const seat::PixelRect& part :
         {seat::PixelRect{0, 0, 20, 50}, seat::PixelRect{20, 11, 31, 40}, seat::PixelRect{31, 0, 50, 50}}) {
        Coverage coverage(part);
        coverage.add(shape);
        const CoveredPixels pixels(*coverage.runs(), 50, 50);
        for (int y = part.top; y < part.bottom; ++y)
            for (int x = part.left; x < part.right; ++x) ASSERT_EQ(pixels.at(x, y), whole.at(x, y)) << x << ' ' << y;
    }
}

TEST(Coverage, OutlineTheOtherWayRoundIsAHole) {
    Coverage coverage({0, 0, 10, 10});
    coverage.add(roundedOutline(1, 1, 9, 9, 0));
    Outline hole = roundedOutline(3, 3, 7, 7, 0);
    std::reverse(hole.begin(), hole.end());
    coverage.add(hole);
    const CoveredPixels pixels(*coverage.runs(), 10, 10);
    EXPECT_EQ(pixels.at(2, 2), 1);
    EXPECT_EQ(pixels.at(5, 5), 0);
    EXPECT_EQ(pixels.at(8, 5), 1);
    EXPECT_EQ(pixels.sum(), 64 - 16);
}

TEST(Coverage, WhatReachesBeyondThePixelsCoversThem) {
    Coverage coverage({3, 3, 6, 6});
    coverage.add(roundedOutline(-1e9, -1e9, 1e9, 1e9, 0));
    const auto runs = coverage.runs();
    EXPECT_EQ(CoveredPixels(*runs, 10, 10).sum(), 9);
    for (const auto& run : *runs) EXPECT_TRUE(run.x == 3 && run.count == 3) << run.y;
}

TEST(Coverage, OutlineWithoutAreaOrOutsideCoversNothing) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    for (const Outline& outline :
         {Outline{}, Outline{{1, 1}, {2, 2}}, roundedOutline(3, 3, 3, 9, 1), roundedOutline(9, 9, 3, 3, 1),
          roundedOutline(nan, 0, 5, 5, 1), roundedOutline(20, 0, 30, 10, 2), roundedOutline(0, -9, 10, -1, 2)})
        EXPECT_EQ(covered(outline, 10, 10).sum(), 0);
    EXPECT_TRUE(Coverage({5, 5, 5, 9}).runs()->empty());
    EXPECT_TRUE(Coverage({5, 9, 9, 2}).runs()->empty());
}

TEST(Coverage, ColourOverCoveredPixelsIsSourceOverWithinAStep) {
    constexpr int edge = 48;
    const auto disc = [] {
        Coverage coverage({0, 0, edge, edge});
        coverage.add(roundedOutline(2.3, 1.8, 46.7, 46.2, 22.2));
        return coverage.runs();
    }();
    const CoveredPixels parts(*disc, edge, edge);
    for (const CGColor& color : {CGColor{1, 1, 1, 0.7}, CGColor{0.65, 0.65, 0.65, 1}, CGColor{0.2, 0.9, 0.1, 0.31}}) {
        for (const std::uint32_t below : {0xffffffffU, 0xff336699U, 0x80402010U, 0U}) {
            test::Surface surface(edge, edge, below);
            seat::SolidSource(color).paint(surface.target(), *disc, 0, 0, {0, 0, edge, edge});
            for (int y = 0; y < edge; ++y)
                for (int x = 0; x < edge; ++x)
                    for (const auto& [shift, component] :
                         {std::pair{0, color.blue}, {8, color.green}, {16, color.red}, {24, 1.0}}) {
                        const double alpha = color.alpha * parts.at(x, y);
                        const double exact = component * alpha * 255 + test::channel(below, shift) * (1 - alpha);
                        ASSERT_NEAR(test::channel(surface.at(x, y), shift), exact, 0.51)
                            << x << ' ' << y << ' ' << shift;
                    }
        }
    }
}

TEST(Coverage, RunsAreCutToTheClipWhereverTheyAreMoved) {
    const std::vector<CoveredRun> runs{{0, 0, 4, CoveredRun::whole}, {0, 1, 4, CoveredRun::whole / 2}};
    test::Surface surface(6, 4);
    seat::SolidSource(CGColor{1, 0, 0, 1}).paint(surface.target(), runs, 3, 1, {2, 0, 5, 4});
    EXPECT_EQ(surface.at(2, 1), test::white);
    EXPECT_EQ(surface.at(3, 1), test::red);
    EXPECT_EQ(surface.at(4, 1), test::red);
    EXPECT_EQ(surface.at(5, 1), test::white);
    EXPECT_EQ(surface.at(4, 2), 0xffff8080U);
    EXPECT_EQ(surface.count(test::white), 24 - 4);
    seat::SolidSource(CGColor{0, 0, 1, 1}).paint(surface.target(), runs, -9, -9, {0, 0, 6, 4});
    EXPECT_EQ(surface.count(test::white), 24 - 4);
}

} // namespace
