#include "kit/quartz/geometry.h"
#include "tests/kit/quartz/Surface.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

namespace {

using test::layerWithFrame;
using test::rgb;
using test::Surface;

std::shared_ptr<CALayer> clipped(CGRect frame, double radius = 0) {
    const auto root = layerWithFrame({{0, 0}, {60, 60}});
    const auto clip = layerWithFrame(frame);
    clip->setMasksToBounds(true);
    clip->setCornerRadius(radius);
    clip->addSublayer(layerWithFrame({{-100, -100}, {300, 300}}, rgb(1, 0, 0)));
    root->addSublayer(clip);
    return root;
}

TEST(LayerClipping, CutsSublayersToTheBounds) {
    Surface surface(60, 60);
    surface.render(*clipped({{10, 20}, {30, 20}}), 1);
    EXPECT_EQ(surface.count(test::red), 600);
    EXPECT_EQ(surface.at(10, 20), test::red);
    EXPECT_EQ(surface.at(39, 39), test::red);
}

TEST(LayerClipping, WithoutItSublayersReachBeyondTheBounds) {
    const auto root = clipped({{10, 20}, {30, 20}});
    root->sublayers()[0]->setMasksToBounds(false);
    Surface surface(60, 60);
    surface.render(*root, 1);
    EXPECT_EQ(surface.count(test::red), 3600);
}

TEST(LayerClipping, BoundsOriginScrollsWhatIsInside) {
    const auto root = clipped({{10, 10}, {20, 20}});
    const auto clip = root->sublayers()[0];
    clip->sublayers()[0]->setFrame({{0, 100}, {20, 5}});
    clip->setBounds({{0, 95}, {20, 20}});
    Surface surface(60, 60);
    surface.render(*root, 1);
    EXPECT_EQ(surface.count(test::red), 100);
    EXPECT_EQ(surface.at(10, 15), test::red);
    EXPECT_EQ(surface.at(10, 14), test::white);
}

TEST(LayerClipping, RoundedClipHasSoftCornersLikeAFillOfThatShape) {
    const auto filled = layerWithFrame({{0, 0}, {60, 60}});
    const auto shape = layerWithFrame({{10, 10}, {40, 40}}, rgb(1, 0, 0));
    shape->setCornerRadius(12);
    filled->addSublayer(shape);
    for (const double scale : {1.0, 1.5, 2.0}) {
        const int edge = static_cast<int>(60 * scale);
        Surface expected(edge, edge), surface(edge, edge);
        expected.render(*filled, scale);
        surface.render(*clipped({{10, 10}, {40, 40}}, 12), scale);
        for (int y = 0; y < edge; ++y)
            for (int x = 0; x < edge; ++x)
                ASSERT_NEAR(test::greenOf(surface.at(x, y)), test::greenOf(expected.at(x, y)), 2) << x << ' ' << y;
    }
}

TEST(LayerClipping, RoundedClipOfTheLayersOwnBackgroundIsNotCutTwice) {
    const auto root = clipped({{10, 10}, {40, 40}}, 12);
    root->sublayers()[0]->setBackgroundColor(rgb(1, 0, 0));
    Surface once(60, 60), both(60, 60);
    once.render(*clipped({{10, 10}, {40, 40}}, 12), 1);
    both.render(*root, 1);
    for (int y = 0; y < 60; ++y)
        for (int x = 0; x < 60; ++x)
            ASSERT_NEAR(test::greenOf(both.at(x, y)), test::greenOf(once.at(x, y)), 2) << x << ' ' << y;
}

TEST(LayerClipping, BorderLiesOverTheClippedSublayers) {
    const auto root = clipped({{10, 10}, {40, 40}}, 12);
    root->sublayers()[0]->setBorderWidth(3);
    root->sublayers()[0]->setBorderColor(rgb(0, 0, 1));
    Surface surface(60, 60);
    surface.render(*root, 1);
    EXPECT_EQ(surface.at(30, 10), test::blue);
    EXPECT_EQ(surface.at(30, 12), test::blue);
    EXPECT_EQ(surface.at(30, 13), test::red);
    EXPECT_EQ(surface.at(10, 30), test::blue);
}

TEST(LayerClipping, TurnedLayersClipAlongTheirEdges) {
    const auto root = clipped({{20, 20}, {20, 20}});
    root->sublayers()[0]->setAffineTransform(CGAffineTransformMakeRotation(std::numbers::pi / 4));
    Surface surface(60, 60);
    surface.render(*root, 1);
    EXPECT_EQ(surface.at(30, 30), test::red);
    EXPECT_EQ(surface.at(30, 18), test::red);
    EXPECT_EQ(surface.at(21, 21), test::white);
    EXPECT_NEAR(surface.count(test::red), 400, 45);
}

} // namespace
