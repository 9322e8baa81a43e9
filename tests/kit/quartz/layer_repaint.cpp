#include "kit/quartz/geometry.h"
#include "platform/quartz/CAGradientLayer.h"
#include "tests/kit/quartz/Surface.h"

#include <gtest/gtest.h>

#include <functional>

namespace {

using test::HostedRoot;

TEST(LayerRepaint, ColourBorderAndCornerChangesCoverTheLayer) {
    HostedRoot root;
    const auto layer = root.add({{10, 20}, {30, 40}});
    const std::function<void()> changes[] = {
        [&] { layer->setBackgroundColor(test::rgb(1, 0, 0)); },
        [&] { layer->setBorderColor(test::rgb(1, 0, 0)); },
        [&] { layer->setBorderWidth(2); },
        [&] { layer->setCornerRadius(2); },
        [&] { layer->setContents(std::make_shared<CGImage>()); },
        [&] { layer->setNeedsDisplay(); },
    };
    for (const auto& change : changes) {
        root.host.repaints.clear();
        change();
        ASSERT_FALSE(root.host.repaints.empty());
        EXPECT_EQ(root.host.united(), CGRectMake(10, 20, 30, 40));
    }
}

TEST(LayerRepaint, MoveCoversWhereItWasAndWhereItIs) {
    HostedRoot root;
    const auto layer = root.add({{0, 0}, {10, 10}});
    layer->setPosition({75, 75});
    EXPECT_EQ(root.host.repaints, (std::vector<CGRect>{{{0, 0}, {10, 10}}, {{70, 70}, {10, 10}}}));
}

TEST(LayerRepaint, UnchangedValueRepaintsNothing) {
    HostedRoot root;
    const auto layer = root.add({{0, 0}, {10, 10}}, test::rgb(1, 0, 0));
    layer->setFrame({{0, 0}, {10, 10}});
    layer->setBackgroundColor(layer->backgroundColor());
    layer->setOpacity(1);
    layer->setHidden(false);
    layer->setTransform(CATransform3DIdentity);
    layer->setCornerRadius(0);
    EXPECT_TRUE(root.host.repaints.empty());
}

TEST(LayerRepaint, AnotherColourThatLooksTheSameRepaintsNothing) {
    HostedRoot root;
    const auto layer = root.add({{0, 0}, {10, 10}}, test::rgb(1, 0, 0));
    layer->setBorderColor(test::rgb(0, 0, 1, 0.5));
    const auto gradient = CAGradientLayer::alloc()->init();
    gradient->setFrame({{0, 0}, {10, 10}});
    gradient->setColors({test::rgb(1, 0, 0), nullptr});
    root.layer->addSublayer(gradient);
    root.host.repaints.clear();
    layer->setBackgroundColor(test::rgb(1, 0, 0));
    layer->setBorderColor(test::rgb(0, 0, 1, 0.5));
    gradient->setColors({test::rgb(1, 0, 0), nullptr});
    EXPECT_TRUE(root.host.repaints.empty());
    layer->setBorderColor(test::rgb(0, 0, 1, 0.25));
    EXPECT_EQ(root.host.repaints.size(), 2U); // where it was, and where it is
    gradient->setColors({test::rgb(1, 0, 0), test::rgb(1, 0, 0)});
    EXPECT_EQ(root.host.repaints.size(), 3U);
}

TEST(LayerRepaint, MoveTakesWhatStandsInTheLayerAlong) {
    HostedRoot root;
    const auto layer = root.add({{10, 10}, {10, 10}});
    layer->addSublayer(test::layerWithFrame({{-5, 20}, {10, 10}}));
    root.host.repaints.clear();
    layer->setPosition({35, 15});
    EXPECT_EQ(root.host.repaints, (std::vector<CGRect>{{{5, 10}, {15, 30}}, {{25, 10}, {15, 30}}}));
}

TEST(LayerRepaint, ColourChangeLeavesOverhangingSublayersAlone) {
    HostedRoot root;
    const auto layer = root.add({{10, 10}, {10, 10}});
    layer->addSublayer(test::layerWithFrame({{-5, 20}, {10, 10}}));
    root.host.repaints.clear();
    layer->setBackgroundColor(test::rgb(1, 0, 0));
    EXPECT_EQ(root.host.united(), CGRectMake(10, 10, 10, 10));
}

TEST(LayerRepaint, IsCutByAncestorsThatClip) {
    HostedRoot root;
    const auto clip = root.add({{10, 10}, {20, 20}});
    clip->setMasksToBounds(true);
    const auto inner = test::layerWithFrame({{15, 15}, {20, 20}});
    clip->addSublayer(inner);
    root.host.repaints.clear();
    inner->setBackgroundColor(test::rgb(1, 0, 0));
    EXPECT_EQ(root.host.united(), CGRectMake(25, 25, 5, 5));
    root.host.repaints.clear();
    inner->setFrame({{50, 50}, {5, 5}});
    EXPECT_EQ(root.host.united(), CGRectMake(25, 25, 5, 5));
    root.host.repaints.clear();
    inner->setBackgroundColor(nullptr);
    EXPECT_TRUE(root.host.repaints.empty());
}

TEST(LayerRepaint, GoesThroughTransformsAndBoundsOrigins) {
    HostedRoot root;
    const auto outer = root.add({{20, 20}, {20, 20}});
    outer->setTransform(CATransform3DMakeScale(2, 2, 1));
    outer->setBounds({{100, 0}, {20, 20}});
    const auto inner = test::layerWithFrame({{100, 0}, {5, 5}});
    outer->addSublayer(inner);
    root.host.repaints.clear();
    inner->setBackgroundColor(test::rgb(1, 0, 0));
    EXPECT_EQ(root.host.united(), CGRectMake(10, 10, 10, 10));
}

TEST(LayerRepaint, HiddenOrTransparentLayersRepaintNothing) {
    HostedRoot root;
    const auto outer = root.add({{0, 0}, {20, 20}});
    const auto inner = test::layerWithFrame({{0, 0}, {5, 5}});
    outer->addSublayer(inner);
    outer->setOpacity(0);
    root.host.repaints.clear();
    inner->setBackgroundColor(test::rgb(1, 0, 0));
    inner->setFrame({{5, 5}, {5, 5}});
    EXPECT_TRUE(root.host.repaints.empty());
    outer->setOpacity(1);
    outer->setHidden(true);
    root.host.repaints.clear();
    inner->setBackgroundColor(nullptr);
    EXPECT_TRUE(root.host.repaints.empty());
}

TEST(LayerRepaint, HidingAndShowingCoverTheTree) {
    HostedRoot root;
    const auto layer = root.add({{10, 10}, {10, 10}});
    layer->addSublayer(test::layerWithFrame({{10, 0}, {10, 10}}));
    root.host.repaints.clear();
    layer->setHidden(true);
    EXPECT_EQ(root.host.united(), CGRectMake(10, 10, 20, 10));
    root.host.repaints.clear();
    layer->setHidden(false);
    EXPECT_EQ(root.host.united(), CGRectMake(10, 10, 20, 10));
}

TEST(LayerRepaint, AddingRemovingAndReorderingCoverTheLayer) {
    HostedRoot root;
    const auto layer = test::layerWithFrame({{10, 10}, {10, 10}});
    root.layer->addSublayer(layer);
    EXPECT_EQ(root.host.united(), CGRectMake(10, 10, 10, 10));
    root.host.repaints.clear();
    root.layer->insertSublayer_atIndex(layer, 0);
    EXPECT_EQ(root.host.united(), CGRectMake(10, 10, 10, 10));
    root.host.repaints.clear();
    layer->removeFromSuperlayer();
    EXPECT_EQ(root.host.united(), CGRectMake(10, 10, 10, 10));
}

TEST(LayerRepaint, DetachedTreeTellsNobody) {
    HostedRoot root;
    const auto layer = root.add({{10, 10}, {10, 10}});
    layer->removeFromSuperlayer();
    root.host.repaints.clear();
    layer->setBackgroundColor(test::rgb(1, 0, 0));
    layer->setFrame({{0, 0}, {50, 50}});
    layer->setNeedsDisplay();
    EXPECT_TRUE(root.host.repaints.empty());
}

TEST(LayerRepaint, PartThatNeedsDisplayIsCutByTheBounds) {
    HostedRoot root;
    const auto layer = root.add({{10, 10}, {20, 20}});
    layer->setNeedsDisplayInRect({{15, -5}, {50, 10}});
    EXPECT_EQ(root.host.united(), CGRectMake(25, 10, 5, 5));
}

TEST(LayerRepaint, EdgesGoOutToWholePixels) {
    const test::ScreenScale scale(2);
    HostedRoot root;
    const auto layer = root.add({{10.2, 10.4}, {10.1, 10.2}});
    layer->setBackgroundColor(test::rgb(1, 0, 0));
    EXPECT_EQ(root.host.united(), CGRectMake(10, 10, 10.5, 11));
}

TEST(LayerRepaint, GradientChangesCoverTheLayer) {
    HostedRoot root;
    const auto gradient = CAGradientLayer::alloc()->init();
    gradient->setFrame({{5, 5}, {10, 10}});
    root.layer->addSublayer(gradient);
    const std::function<void()> changes[] = {
        [&] { gradient->setColors({test::rgb(1, 0, 0)}); },
        [&] {
            gradient->setStartPoint({0, 0.5});
        },
        [&] {
            gradient->setEndPoint({1, 0.5});
        },
    };
    for (const auto& change : changes) {
        root.host.repaints.clear();
        change();
        EXPECT_EQ(root.host.united(), CGRectMake(5, 5, 10, 10));
    }
}

TEST(LayerRepaint, WhatIsDrawnStaysInsideWhatIsReported) {
    for (const double scale : {1.0, 1.25, 1.5, 2.0, 3.0}) {
        const test::ScreenScale screen(scale);
        HostedRoot root;
        for (int i = 0; i < 200; ++i) {
            const double x = 20 + i * 0.137, y = 20 + i * 0.071, w = 0.05 + i * 0.11;
            // Some are discs.
            const double h = i % 6 == 3 ? w : 0.06 + i * 0.09;
            root.host.repaints.clear();
            const auto layer = test::layerWithFrame({{x, y}, {w, h}}, test::rgb(1, 0, 0));
            layer->setCornerRadius(i % 3 == 0 ? w : 0);
            layer->setBorderWidth(i % 2);
            layer->setBorderColor(test::rgb(0, 0, 1));
            root.layer->addSublayer(layer);
            const CGRect reported = root.host.united();
            const int edge = static_cast<int>(100 * scale);
            test::Surface surface(edge, edge);
            surface.render(*root.layer, scale);
            int drawn = 0;
            for (int py = 0; py < edge; ++py)
                for (int px = 0; px < edge; ++px) {
                    if (surface.at(px, py) == test::white) continue;
                    ++drawn;
                    ASSERT_TRUE(CGRectContainsPoint(reported, {(px + 0.5) / scale, (py + 0.5) / scale}))
                        << scale << ' ' << i << ' ' << reported << ' ' << px << ' ' << py;
                }
            ASSERT_GT(drawn, 0) << scale << ' ' << i;
            layer->removeFromSuperlayer();
        }
    }
}

} // namespace
