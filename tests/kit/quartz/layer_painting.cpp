#include "kit/quartz/geometry.h"
#include "platform/quartz/CAGradientLayer.h"
#include "tests/kit/quartz/Surface.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>

namespace {

using test::layerWithFrame;
using test::rgb;
using test::Surface;

std::shared_ptr<CALayer> root(double edge = 40) { return layerWithFrame(CGRectMake(0, 0, edge, edge)); }

// Fills the bounds with the current colour of a fresh context, and counts.
struct Painter : CALayerDelegate {
    void drawLayer_inContext(CALayer& layer, CGContextRef context) override {
        ++calls;
        if (draw) draw(layer, context);
    }
    std::function<void(CALayer&, CGContextRef)> draw;
    int calls = 0;
};

CGImageRef picture(std::size_t edge, std::uint32_t pixel) {
    auto image = std::make_shared<CGImage>();
    image->width = image->height = edge;
    image->pixels.assign(edge * edge, pixel);
    return image;
}

TEST(LayerPainting, OrderIsBackgroundContentsOwnDrawingSublayersBorder) {
    Painter painter;
    painter.draw = [](CALayer&, CGContextRef context) {
        CGContextSetFillColorWithColor(context, rgb(0, 1, 0));
        CGContextFillRect(context, CGRectMake(20, 0, 20, 40));
    };
    const auto top = root();
    top->setBackgroundColor(rgb(1, 0, 0));
    top->setContents(picture(10, test::black));
    top->setBounds({{0, 0}, {40, 40}});
    top->setDelegate(&painter);
    top->addSublayer(layerWithFrame({{0, 20}, {40, 20}}, rgb(0, 0, 1)));
    top->setBorderColor(rgb(1, 1, 0));
    top->setBorderWidth(2);

    Surface surface(40, 40);
    surface.render(*top, 1);

    EXPECT_EQ(surface.at(10, 10), test::black);
    EXPECT_EQ(surface.at(30, 10), test::green);
    EXPECT_EQ(surface.at(30, 30), test::blue);
    EXPECT_EQ(surface.at(1, 30), 0xffffff00U);
    EXPECT_EQ(surface.at(2, 30), test::blue);
    top->setDelegate(nullptr);
}

TEST(LayerPainting, PixelsOutsideTheDamageStayAsTheyAre) {
    const auto top = root();
    top->setBackgroundColor(rgb(1, 0, 0));
    Surface surface(80, 80);
    surface.render(*top, 2, {{{5, 5}, {10, 10}}, {{20, 20}, {1, 1}}});
    EXPECT_EQ(surface.count(test::red), 400 + 4);
    EXPECT_EQ(surface.at(9, 10), test::white);
    EXPECT_EQ(surface.at(10, 10), test::red);
    EXPECT_EQ(surface.at(29, 29), test::red);
    EXPECT_EQ(surface.at(30, 30), test::white);
}

TEST(LayerPainting, TranslucentLayersAreLaidDownOnceWhereDamageOverlaps) {
    const auto top = root();
    top->setBackgroundColor(rgb(0, 0, 0, 0.5));
    Surface surface(40, 40);
    surface.render(*top, 1, {{{0, 0}, {20, 20}}, {{10, 10}, {20, 20}}, {{5, 5}, {10, 10}}, {{0, 0}, {20, 20}}});
    EXPECT_EQ(surface.at(15, 15), surface.at(2, 2));
    EXPECT_EQ(surface.at(25, 25), surface.at(2, 2));
}

TEST(LayerPainting, DamageWithoutAreaOrBeyondTheTargetIsHarmless) {
    const auto top = root();
    top->setBackgroundColor(rgb(1, 0, 0));
    Surface surface(40, 40);
    surface.render(*top, 1, {CGRectNull, CGRectZero, {{-100, -100}, {50, 50}}, {{500, 0}, {10, 10}}});
    EXPECT_EQ(surface.count(test::white), 1600);
    surface.render(*top, 1, {{{-1e300, -1e300}, {2e300, 2e300}}});
    EXPECT_EQ(surface.count(test::red), 1600);
}

TEST(LayerPainting, DelegateOutsideTheDamageIsNotAsked) {
    Painter painter;
    const auto top = root();
    const auto layer = layerWithFrame({{20, 20}, {10, 10}});
    layer->setDelegate(&painter);
    top->addSublayer(layer);
    Surface surface(40, 40);
    surface.render(*top, 1, {{{0, 0}, {20, 20}}});
    EXPECT_EQ(painter.calls, 0);
    surface.render(*top, 1, {{{0, 0}, {21, 21}}});
    EXPECT_EQ(painter.calls, 1);
}

TEST(LayerPainting, HiddenAndTransparentLayersAreSkippedWithAllTheyHold) {
    const auto top = root();
    const auto layer = layerWithFrame({{0, 0}, {20, 20}}, rgb(1, 0, 0));
    layer->addSublayer(layerWithFrame({{0, 0}, {20, 20}}, rgb(0, 0, 1)));
    top->addSublayer(layer);
    Surface surface(40, 40);
    layer->setHidden(true);
    surface.render(*top, 1);
    layer->setHidden(false);
    layer->setOpacity(0);
    surface.render(*top, 1);
    EXPECT_EQ(surface.count(test::white), 1600);
}

TEST(LayerPainting, HairlineIsOneCrispPixelAtEveryScale) {
    for (const double scale : {1.0, 1.25, 1.3, 1.5, 1.75, 2.0, 2.25, 3.0})
        for (int step = 0; step < 20; ++step) {
            const auto top = root(100);
            const double y = 3.1 + step * 1.37;
            top->addSublayer(layerWithFrame({{0, y - 1 / scale}, {100, 1 / scale}}, rgb(0, 0, 0)));
            Surface surface(20, static_cast<int>(100 * scale));
            surface.render(*top, scale);
            int dark = 0;
            for (int row = 0; row < surface.height; ++row) {
                const auto pixel = surface.at(10, row);
                ASSERT_TRUE(pixel == test::white || pixel == test::black) << scale << ' ' << step;
                dark += pixel == test::black;
            }
            ASSERT_EQ(dark, 1) << scale << ' ' << step;
        }
}

TEST(LayerPainting, NeighboursShareAnEdgeWithoutGapOrOverlap) {
    for (const double scale : {1.0, 1.25, 1.5, 1.75}) {
        const auto top = root(100);
        for (int i = 0; i < 20; ++i) top->addSublayer(layerWithFrame({{0, i * 4.3}, {100, 4.3}}, rgb(0, 0, 0, 0.5)));
        Surface surface(10, static_cast<int>(std::floor(86 * scale)));
        surface.render(*top, scale);
        for (int row = 0; row < surface.height; ++row) ASSERT_EQ(surface.at(5, row), surface.at(5, 0)) << scale;
    }
}

TEST(LayerPainting, BorderIsInsideAndAtLeastOnePixelWide) {
    for (const double scale : {1.0, 1.5, 2.0, 3.0}) {
        const auto top = root();
        const auto layer = layerWithFrame({{10, 10}, {20, 20}});
        layer->setBorderColor(rgb(0, 0, 0));
        layer->setBorderWidth(1 / scale);
        top->addSublayer(layer);
        const int edge = static_cast<int>(40 * scale);
        const int first = static_cast<int>(10 * scale), last = static_cast<int>(30 * scale) - 1;
        Surface surface(edge, edge);
        surface.render(*top, scale);
        for (int i = first; i <= last; ++i) {
            ASSERT_EQ(surface.at(i, first), test::black) << scale;
            ASSERT_EQ(surface.at(i, last), test::black) << scale;
            ASSERT_EQ(surface.at(first, i), test::black) << scale;
            ASSERT_EQ(surface.at(last, i), test::black) << scale;
        }
        ASSERT_EQ(surface.count(test::black), 4 * (last - first)) << scale;
    }
}

TEST(LayerPainting, BorderWiderThanTheLayerFillsIt) {
    const auto top = root();
    top->addSublayer(layerWithFrame({{10, 10}, {4, 4}}));
    top->sublayers()[0]->setBorderWidth(50);
    top->sublayers()[0]->setBorderColor(rgb(0, 0, 0, 0.5));
    Surface surface(40, 40);
    surface.render(*top, 1);
    for (int y = 10; y < 14; ++y)
        for (int x = 10; x < 14; ++x) EXPECT_EQ(surface.at(x, y), surface.at(10, 10));
    EXPECT_EQ(test::redOf(surface.at(10, 10)), 128);
    EXPECT_EQ(surface.count(test::white), 1600 - 16);
}

TEST(LayerPainting, RoundedCornersAreSoftAndSidesAreCrisp) {
    const auto top = root();
    const auto layer = layerWithFrame({{10, 10}, {20, 20}}, rgb(0, 0, 0));
    layer->setCornerRadius(6);
    top->addSublayer(layer);
    Surface surface(40, 40);
    surface.render(*top, 1);
    EXPECT_EQ(surface.at(10, 10), test::white);
    EXPECT_EQ(surface.at(20, 10), test::black);
    EXPECT_EQ(surface.at(20, 9), test::white);
    EXPECT_EQ(surface.at(10, 20), test::black);
    EXPECT_EQ(surface.at(9, 20), test::white);
    bool soft = false;
    for (int x = 10; x < 16; ++x) soft |= surface.at(x, 11) != test::white && surface.at(x, 11) != test::black;
    EXPECT_TRUE(soft);
}

TEST(LayerPainting, DiscKeepsItsMiddleBetweenPixels) {
    const auto top = root();
    const auto disc = layerWithFrame({{5.5, 5.5}, {17, 17}}, rgb(0, 0, 0));
    disc->setCornerRadius(8.5);
    top->addSublayer(disc);
    Surface surface(28, 28);
    surface.render(*top, 1);
    for (int y = 0; y < 28; ++y)
        for (int x = 0; x < 28; ++x) {
            ASSERT_NEAR(test::redOf(surface.at(x, y)), test::redOf(surface.at(27 - x, y)), 2) << x << ' ' << y;
            ASSERT_NEAR(test::redOf(surface.at(x, y)), test::redOf(surface.at(x, 27 - y)), 2) << x << ' ' << y;
        }
}

TEST(LayerPainting, OpaqueBorderLetsNothingOfTheFillShineThroughItsRim) {
    const auto top = root();
    const auto layer = layerWithFrame({{2, 2}, {36, 36}}, rgb(1, 0, 0));
    layer->setCornerRadius(18);
    layer->setBorderColor(rgb(1, 1, 1));
    layer->setBorderWidth(2);
    top->addSublayer(layer);
    Surface surface(40, 40);
    surface.render(*top, 1);
    // On a white ground a white rim shows nothing beyond the inner edge.
    for (int y = 0; y < 40; ++y)
        for (int x = 0; x < 40; ++x) {
            const double distance = std::hypot(x + 0.5 - 20, y + 0.5 - 20);
            if (distance > 16.8) ASSERT_EQ(surface.at(x, y), test::white) << x << ' ' << y;
            if (distance < 15.2) ASSERT_EQ(surface.at(x, y), test::red) << x << ' ' << y;
        }
}

TEST(LayerPainting, ContentsOfTheBoundsPixelsAreCopied) {
    const auto top = root(8);
    auto image = std::make_shared<CGImage>();
    image->width = image->height = 16;
    for (std::uint32_t i = 0; i < 256; ++i) image->pixels.push_back(0xff000000U | (i * 0x010203U));
    top->setContents(image);
    Surface surface(16, 16);
    surface.render(*top, 2);
    EXPECT_EQ(surface.pixels, image->pixels);
}

TEST(LayerPainting, ContentsAtAFractionOfAPixelStayPixelForPixel) {
    const auto top = root(12);
    auto image = std::make_shared<CGImage>();
    image->width = image->height = 6;
    for (std::uint32_t i = 0; i < 36; ++i) image->pixels.push_back(i % 2 ? test::black : test::red);
    const auto layer = layerWithFrame({{3.2, 3.4}, {6, 6}});
    layer->setContents(image);
    top->addSublayer(layer);
    Surface surface(12, 12);
    surface.render(*top, 1);
    for (int y = 0; y < 6; ++y)
        for (int x = 0; x < 6; ++x)
            EXPECT_EQ(surface.at(x + 3, y + 3), image->pixels[static_cast<std::size_t>(y * 6 + x)]);
}

TEST(LayerPainting, OpacityWeakensContentsOverWhatIsBelow) {
    const auto top = root();
    top->setBackgroundColor(rgb(0, 0, 0));
    const auto layer = layerWithFrame({{0, 0}, {40, 40}});
    layer->setContents(picture(40, 0xffff8040));
    layer->setOpacity(0.3);
    top->addSublayer(layer);
    Surface surface(40, 40);
    surface.render(*top, 1);
    EXPECT_NEAR(test::redOf(surface.at(5, 5)), 255 * 0.3, 0.51);
    EXPECT_NEAR(test::greenOf(surface.at(5, 5)), 128 * 0.3, 0.51);
    EXPECT_NEAR(test::blueOf(surface.at(5, 5)), 64 * 0.3, 0.51);
    EXPECT_EQ(test::alphaOf(surface.at(5, 5)), 255);
}

TEST(LayerPainting, OpacityHoldsForAGroupAtOnce) {
    const auto top = root();
    const auto group = layerWithFrame({{10, 10}, {20, 20}}, rgb(1, 0, 0));
    group->addSublayer(layerWithFrame({{5, 5}, {30, 10}}, rgb(0, 0, 1)));
    group->setOpacity(0.5);
    top->addSublayer(group);
    Surface surface(40, 40);
    surface.render(*top, 1);
    EXPECT_EQ(surface.at(12, 12), 0xffff8080U);
    EXPECT_EQ(surface.at(20, 20), 0xff8080ffU); // no red shines through the blue
    EXPECT_EQ(surface.at(35, 20), 0xff8080ffU); // beyond the group's own bounds
    EXPECT_EQ(surface.at(38, 28), test::white);
}

TEST(LayerPainting, GroupIsTheSameWhereOnlyAPartIsDamaged) {
    const auto top = root();
    top->setBackgroundColor(rgb(1, 1, 1));
    const auto group = layerWithFrame({{3.3, 4.7}, {29.1, 28.2}}, rgb(1, 0, 0));
    group->setCornerRadius(9);
    group->setMasksToBounds(true);
    group->setBorderWidth(1);
    group->setBorderColor(rgb(0, 0, 0, 0.5));
    group->addSublayer(layerWithFrame({{5.5, 5.5}, {40.3, 10.9}}, rgb(0, 0, 1)));
    group->setOpacity(0.7);
    top->addSublayer(group);
    for (const double scale : {1.0, 1.5, 2.0}) {
        const int edge = static_cast<int>(40 * scale);
        Surface whole(edge, edge), pieces(edge, edge);
        whole.render(*top, scale);
        for (int y = 0; y < 40; y += 7)
            for (int x = 0; x < 40; x += 11) pieces.render(*top, scale, {CGRectMake(x, y, 11, 7)});
        for (int y = 0; y < edge; ++y)
            for (int x = 0; x < edge; ++x)
                for (const int shift : {0, 8, 16})
                    ASSERT_NEAR(test::channel(pieces.at(x, y), shift), test::channel(whole.at(x, y), shift), 1)
                        << scale << ' ' << x << ' ' << y;
    }
}

TEST(LayerPainting, GradientRunsBetweenItsPointsInsideTheRoundedBounds) {
    const auto top = root(100);
    const auto bar = CAGradientLayer::alloc()->init();
    bar->setFrame({{0, 10}, {100, 20}});
    bar->setCornerRadius(10);
    bar->setColors({rgb(1, 0, 0), rgb(0, 0, 1)});
    bar->setStartPoint({0, 0.5});
    bar->setEndPoint({1, 0.5});
    top->addSublayer(bar);
    Surface surface(100, 40);
    surface.render(*top, 1);
    EXPECT_EQ(surface.at(0, 10), test::white);
    EXPECT_EQ(surface.at(99, 29), test::white);
    for (int x = 1; x < 99; ++x) {
        const double share = (x + 0.5) / 100;
        ASSERT_NEAR(test::redOf(surface.at(x, 20)), 255 * (1 - share), 1.5) << x;
        ASSERT_NEAR(test::blueOf(surface.at(x, 20)), 255 * share, 1.5) << x;
        if (x >= 10 && x < 90) {
            ASSERT_EQ(surface.at(x, 10), surface.at(x, 20)) << x;
            ASSERT_EQ(surface.at(x, 29), surface.at(x, 20)) << x;
            ASSERT_EQ(surface.at(x, 9), test::white) << x;
        }
    }
}

TEST(LayerPainting, GradientWithoutColoursDrawsNothingAndWithOneIsPlain) {
    const auto bar = CAGradientLayer::alloc()->init();
    bar->setFrame({{0, 0}, {10, 10}});
    Surface surface(10, 10);
    surface.render(*bar, 1);
    EXPECT_EQ(surface.count(test::white), 100);
    bar->setColors({rgb(1, 0, 0)});
    surface.render(*bar, 1);
    EXPECT_EQ(surface.count(test::red), 100);
}

TEST(LayerPainting, OwnDrawingIsCutByTheBoundsAndUsesPoints) {
    Painter painter;
    painter.draw = [](CALayer&, CGContextRef context) { CGContextFillRect(context, {{-100, -100}, {1000, 1000}}); };
    const auto top = root();
    const auto layer = layerWithFrame({{10, 10}, {5, 5}});
    layer->setDelegate(&painter);
    top->addSublayer(layer);
    Surface surface(80, 80);
    surface.render(*top, 2);
    EXPECT_EQ(surface.count(test::black), 100);
    EXPECT_EQ(surface.at(20, 20), test::black);
    EXPECT_EQ(surface.at(30, 30), test::white);
}

TEST(LayerPainting, DelegateMayTakeItsLayerOutWhileItDraws) {
    Painter painter;
    const auto top = root();
    auto layer = layerWithFrame({{10, 10}, {5, 5}});
    layer->setDelegate(&painter);
    top->addSublayer(layer);
    top->addSublayer(layerWithFrame({{20, 20}, {5, 5}}, rgb(1, 0, 0)));
    layer.reset();
    painter.draw = [](CALayer& drawn, CGContextRef) { drawn.removeFromSuperlayer(); };
    Surface surface(40, 40);
    surface.render(*top, 1);
    EXPECT_EQ(surface.count(test::red), 25);
    EXPECT_EQ(top->sublayers().size(), 1U);
}

TEST(LayerPainting, TargetRowsMayHavePadding) {
    const auto top = root(4);
    top->setBackgroundColor(rgb(1, 0, 0));
    Surface surface(8, 4);
    const CGRect all{{0, 0}, {4, 4}};
    seat::renderLayerTree(*top, {surface.pixels.data(), 4, 4, 8 * 4}, 1, {&all, 1});
    EXPECT_EQ(surface.count(test::red), 16);
    EXPECT_EQ(surface.at(4, 0), test::white);
}

} // namespace
