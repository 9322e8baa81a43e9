#include "platform/quartz/CALayer.h"

#include "kit/quartz/geometry.h"
#include "tests/kit/quartz/Surface.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>
#include <random>

namespace {

TEST(LayerGeometry, FrameReadsBackExactlyWhateverItsDigits) {
    std::mt19937 random(3);
    std::uniform_real_distribution<double> number(-1000, 1000);
    const auto layer = CALayer::layer();
    for (int i = 0; i < 1000; ++i) {
        const CGRect frame{{number(random), number(random)}, {number(random), number(random)}};
        layer->setFrame(frame);
        ASSERT_EQ(layer->frame(), frame);
    }
}

TEST(LayerGeometry, FrameGivesBoundsSizeAndPositionOfTheMiddle) {
    const auto layer = CALayer::layer();
    layer->setBounds({{7, 8}, {1, 1}});
    layer->setFrame({{10, 20}, {30, 40}});
    EXPECT_EQ(layer->position(), CGPointMake(25, 40));
    EXPECT_EQ(layer->bounds(), CGRectMake(7, 8, 30, 40));
}

TEST(LayerGeometry, FrameFollowsPositionAndBounds) {
    const auto layer = CALayer::layer();
    layer->setFrame({{0, 0}, {10, 10}});
    layer->setPosition({50, 60});
    EXPECT_EQ(layer->frame(), CGRectMake(45, 55, 10, 10));
    layer->setBounds({{0, 0}, {20, 30}});
    EXPECT_EQ(layer->frame(), CGRectMake(40, 45, 20, 30));
}

TEST(LayerGeometry, ScaleGrowsTheFrameRoundItsMiddle) {
    const auto layer = test::layerWithFrame({{0, 0}, {28, 28}});
    layer->setTransform(CATransform3DMakeScale(1.5, 1.5, 1));
    EXPECT_EQ(layer->frame(), CGRectMake(-7, -7, 42, 42));
    EXPECT_EQ(layer->bounds(), CGRectMake(0, 0, 28, 28));
    layer->setTransform(CATransform3DIdentity);
    EXPECT_EQ(layer->frame(), CGRectMake(0, 0, 28, 28));
}

TEST(LayerGeometry, TurnedLayersFrameHoldsItsCorners) {
    const auto layer = test::layerWithFrame({{0, 0}, {40, 20}});
    layer->setAffineTransform(CGAffineTransformMakeRotation(std::numbers::pi / 2));
    const CGRect frame = layer->frame();
    EXPECT_NEAR(frame.origin.x, 10, 1e-9);
    EXPECT_NEAR(frame.origin.y, -10, 1e-9);
    EXPECT_NEAR(frame.size.width, 20, 1e-9);
    EXPECT_NEAR(frame.size.height, 40, 1e-9);
}

TEST(LayerGeometry, FrameSetUnderATranslationIsWhereTheLayerStands) {
    const auto layer = CALayer::layer();
    layer->setAffineTransform(CGAffineTransformMakeTranslation(5, 6));
    layer->setFrame({{10, 10}, {4, 4}});
    EXPECT_EQ(layer->frame(), CGRectMake(10, 10, 4, 4));
    EXPECT_EQ(layer->position(), CGPointMake(7, 6));
}

TEST(LayerGeometry, FrameSetUnderAScaleShrinksTheBounds) {
    const auto layer = CALayer::layer();
    layer->setAffineTransform(CGAffineTransformMakeScale(2, 4));
    layer->setFrame({{0, 0}, {40, 40}});
    EXPECT_EQ(layer->bounds().size.width, 20);
    EXPECT_EQ(layer->bounds().size.height, 10);
    EXPECT_EQ(layer->frame(), CGRectMake(0, 0, 40, 40));
}

TEST(LayerGeometry, FrameOfATurnedLayerIsTheOneThatWasSet) {
    const auto layer = test::layerWithFrame({{0, 0}, {10, 10}});
    layer->setAffineTransform({0.8, 0.6, -0.6, 0.8, 0, 0});

    layer->setFrame({{10, 20}, {60, 50}});

    EXPECT_NEAR(layer->frame().origin.x, 10, 1e-9);
    EXPECT_NEAR(layer->frame().origin.y, 20, 1e-9);
    EXPECT_NEAR(layer->frame().size.width, 60, 1e-9);
    EXPECT_NEAR(layer->frame().size.height, 50, 1e-9);
}

TEST(LayerGeometry, NegativeSizeStaysPlainArithmetic) {
    const auto layer = test::layerWithFrame({{20, 10}, {-8, 5}});
    EXPECT_EQ(layer->frame(), CGRectMake(20, 10, -8, 5));
    EXPECT_EQ(layer->bounds().size.width, -8);
}

TEST(LayerGeometry, PlacesThatAreNoNumbersAreHeldAndDrawNothing) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double infinity = std::numeric_limits<double>::infinity();
    test::HostedRoot root;
    for (const double bad : {nan, infinity, -infinity, 1e300}) {
        const auto layer = root.add({{0, 0}, {10, 10}}, test::rgb(1, 0, 0));
        const auto inner = test::layerWithFrame({{0, 0}, {5, 5}}, test::rgb(1, 0, 0));
        layer->addSublayer(inner);
        layer->setPosition({bad, 5});
        test::Surface surface(20, 20);
        surface.render(*root.layer, 1);
        EXPECT_EQ(surface.count(test::white), 400) << bad;
        layer->removeFromSuperlayer();
    }
}

} // namespace
