#include "kit/quartz/geometry.h"
#include "platform/quartz/CGContext.h"
#include "tests/kit/quartz/Surface.h"
#include "tests/kit/quartz/numbers.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

namespace {

using test::alphaOf;
using test::blueOf;
using test::greenOf;
using test::redOf;

using test::infinity;
using test::nan;

std::shared_ptr<UIImage> takeAndEnd() {
    auto image = UIGraphicsGetImageFromCurrentImageContext();
    UIGraphicsEndImageContext();
    return image;
}

std::vector<std::uint32_t> pixelsAndEnd() { return takeAndEnd()->CGImage()->pixels; }

TEST(ImageContext, ScaleZeroIsTheScreens) {
    const test::ScreenScale scale(2);
    UIGraphicsBeginImageContextWithOptions({10, 10}, /*opaque*/ false, 0);
    const auto image = takeAndEnd();
    EXPECT_EQ(image->scale(), 2);
    EXPECT_EQ(image->size().width, 10);
    EXPECT_EQ(image->CGImage()->width, 20U);
    EXPECT_EQ(image->CGImage()->height, 20U);
}

TEST(ImageContext, PartOfAPixelTakesAWholeOne) {
    UIGraphicsBeginImageContextWithOptions({11, 7}, /*opaque*/ false, 1.5);
    const auto image = takeAndEnd();
    EXPECT_EQ(image->CGImage()->width, 17U);
    EXPECT_EQ(image->CGImage()->height, 11U);
}

TEST(ImageContext, StartsTransparentOrOpaquelyBlack) {
    for (const bool opaque : {false, true}) {
        UIGraphicsBeginImageContextWithOptions({2, 2}, opaque, 1);
        for (const auto pixel : pixelsAndEnd()) EXPECT_EQ(pixel, opaque ? test::black : 0U);
    }
}

TEST(ImageContext, SizeWithoutPixelsGivesNoImageAndTakesDrawingWithoutHarm) {
    const CGSize sizes[] = {{0, 10}, {10, 0}, {-5, 10}, {nan, 10}, {10, infinity}, {1e300, 1e300}, {16385, 1}};
    for (const CGSize size : sizes) {
        UIGraphicsBeginImageContextWithOptions(size, /*opaque*/ true, 1);
        const CGContextRef context = UIGraphicsGetCurrentContext();
        ASSERT_NE(context, nullptr);
        CGContextSetRGBFillColor(context, 1, 0, 0, 1);
        CGContextFillRect(context, {{0, 0}, size});
        CGContextFillRect(context, {{-10, -10}, {1e9, 1e9}});
        EXPECT_EQ(UIGraphicsGetImageFromCurrentImageContext(), nullptr);
        UIGraphicsEndImageContext();
    }
    EXPECT_EQ(UIGraphicsGetCurrentContext(), nullptr);
}

TEST(ImageContext, LongestEdgeStillHasPixels) {
    UIGraphicsBeginImageContextWithOptions({16384, 1}, /*opaque*/ false, 1);
    EXPECT_EQ(takeAndEnd()->CGImage()->width, 16384U);
}

TEST(ImageContext, OnesNestAndTheOuterGoesOn) {
    UIGraphicsBeginImageContextWithOptions({4, 4}, /*opaque*/ false, 1);
    const CGContextRef outer = UIGraphicsGetCurrentContext();
    UIGraphicsBeginImageContextWithOptions({2, 2}, /*opaque*/ false, 1);
    EXPECT_NE(UIGraphicsGetCurrentContext(), outer);
    EXPECT_EQ(takeAndEnd()->CGImage()->width, 2U);
    EXPECT_EQ(UIGraphicsGetCurrentContext(), outer);
    EXPECT_EQ(takeAndEnd()->CGImage()->width, 4U);
}

TEST(ImageContext, EndWithoutBeginDoesNothing) {
    UIGraphicsEndImageContext();
    EXPECT_EQ(UIGraphicsGetCurrentContext(), nullptr);
    EXPECT_EQ(UIGraphicsGetImageFromCurrentImageContext(), nullptr);
}

TEST(ImageContext, ImageStaysAsItWasTakenWhileDrawingGoesOn) {
    UIGraphicsBeginImageContextWithOptions({2, 2}, /*opaque*/ false, 1);
    const CGContextRef context = UIGraphicsGetCurrentContext();
    CGContextSetRGBFillColor(context, 1, 0, 0, 1);
    CGContextFillRect(context, {{0, 0}, {2, 2}});
    const auto first = UIGraphicsGetImageFromCurrentImageContext();
    CGContextSetRGBFillColor(context, 0, 0, 1, 1);
    CGContextFillRect(context, {{0, 0}, {1, 2}});
    const auto second = takeAndEnd();
    EXPECT_EQ(first->CGImage()->pixels, std::vector<std::uint32_t>(4, test::red));
    EXPECT_EQ(second->CGImage()->pixels, (std::vector<std::uint32_t>{test::blue, test::red, test::blue, test::red}));
}

TEST(ImageContext, FreshOneFillsWithOpaqueBlack) {
    UIGraphicsBeginImageContextWithOptions({1, 1}, /*opaque*/ false, 1);
    CGContextFillRect(UIGraphicsGetCurrentContext(), {{0, 0}, {1, 1}});
    EXPECT_EQ(takeAndEnd()->CGImage()->pixels[0], test::black);
}

// Source-over in double precision, kept between the fills without rounding.
struct ExactPixel {
    double red = 0, green = 0, blue = 0, alpha = 0;
    void over(double r, double g, double b, double a) {
        red = r * a + red * (1 - a);
        green = g * a + green * (1 - a);
        blue = b * a + blue * (1 - a);
        alpha = a + alpha * (1 - a);
    }
};

TEST(ImageContext, OneAlphaFillIsTheRoundedExactValue) {
    for (int step = 0; step <= 200; ++step) {
        const double alpha = step / 200.0;
        UIGraphicsBeginImageContextWithOptions({256, 1}, /*opaque*/ true, 1);
        const CGContextRef context = UIGraphicsGetCurrentContext();
        for (int i = 0; i < 256; ++i) {
            CGContextSetRGBFillColor(context, i / 255.0, (255 - i) / 255.0, 0.5, 1);
            CGContextFillRect(context, CGRectMake(i, 0, 1, 1));
        }
        CGContextSetRGBFillColor(context, 0.9, 0.1, 1, alpha);
        CGContextFillRect(context, CGRectMake(0, 0, 256, 1));
        const auto image = takeAndEnd()->CGImage();
        for (int i = 0; i < 256; ++i) {
            const auto pixel = image->pixels[static_cast<std::size_t>(i)];
            ASSERT_NEAR(redOf(pixel), 0.9 * alpha * 255 + i * (1 - alpha), 0.50001) << alpha << ' ' << i;
            ASSERT_NEAR(greenOf(pixel), 0.1 * alpha * 255 + (255 - i) * (1 - alpha), 0.50001) << alpha << ' ' << i;
            ASSERT_EQ(alphaOf(pixel), 255);
        }
    }
}

TEST(ImageContext, HueStripesUnderWhiteRowsAreWithinOneStepOfExactSourceOver) {
    const double limit = 0.9F;
    const int columns = 20, rows = 31, tile = 4;
    UIGraphicsBeginImageContextWithOptions(CGSizeMake(columns * tile, rows * tile), /*opaque*/ false, 2);
    const CGContextRef context = UIGraphicsGetCurrentContext();
    std::vector<ExactPixel> exact(static_cast<std::size_t>(columns * rows));
    const auto tileAt = [&](int column, int row) {
        return static_cast<std::size_t>(row) * columns + static_cast<std::size_t>(column);
    };
    for (int i = 0; i < columns; ++i) {
        const auto color = UIColor::colorWithHue_saturation_brightness_alpha(i / double{columns}, 1, 1, 1);
        CGContextSetFillColorWithColor(context, color->CGColor());
        CGContextFillRect(context, CGRectMake(i * tile, 0, tile, rows * tile));
        for (int j = 0; j < rows; ++j)
            exact[tileAt(i, j)].over(color->CGColor()->red, color->CGColor()->green, color->CGColor()->blue, 1);
    }
    for (int j = 0; j < rows; ++j) {
        const double alpha = limit * (j / double{rows - 1});
        CGContextSetRGBFillColor(context, 1, 1, 1, alpha);
        CGContextFillRect(context, CGRectMake(0, j * tile, columns * tile, tile));
        for (int i = 0; i < columns; ++i) exact[tileAt(i, j)].over(1, 1, 1, alpha);
    }
    const auto image = takeAndEnd()->CGImage();

    for (std::size_t y = 0; y < image->height; ++y)
        for (std::size_t x = 0; x < image->width; ++x) {
            const auto& e = exact[y / (2 * tile) * columns + x / (2 * tile)];
            const auto pixel = image->pixels[y * image->width + x];
            ASSERT_NEAR(redOf(pixel), e.red * 255, 1) << x << ' ' << y;
            ASSERT_NEAR(greenOf(pixel), e.green * 255, 1) << x << ' ' << y;
            ASSERT_NEAR(blueOf(pixel), e.blue * 255, 1) << x << ' ' << y;
            ASSERT_EQ(alphaOf(pixel), 255) << x << ' ' << y;
        }
}

TEST(ImageContext, TilesLeaveNoSeamAtFractionalScales) {
    for (const double scale : {1.0, 1.25, 1.5, 1.75, 2.0, 3.0}) {
        UIGraphicsBeginImageContextWithOptions({64, 64}, /*opaque*/ false, scale);
        const CGContextRef context = UIGraphicsGetCurrentContext();
        CGContextSetGrayFillColor(context, 0, 1);
        for (int j = 0; j < 4; ++j)
            for (int i = 0; i < 4; ++i) CGContextFillRect(context, CGRectMake(i * 16, j * 16, 16, 16));
        for (const auto pixel : pixelsAndEnd()) ASSERT_EQ(pixel, test::black) << scale;
    }
}

TEST(ImageContext, EdgesBetweenPixelsAreSoft) {
    UIGraphicsBeginImageContextWithOptions({4, 4}, /*opaque*/ false, 1);
    const CGContextRef context = UIGraphicsGetCurrentContext();
    CGContextSetRGBFillColor(context, 1, 1, 1, 1);
    CGContextFillRect(context, {{0.5, 1}, {2.25, 2.5}});
    const auto image = takeAndEnd()->CGImage();
    const auto alpha = [&](std::size_t x, std::size_t y) { return alphaOf(image->pixels[y * 4 + x]); };
    EXPECT_EQ(alpha(0, 1), 128);
    EXPECT_EQ(alpha(1, 1), 255);
    EXPECT_EQ(alpha(2, 2), 191);
    EXPECT_EQ(alpha(3, 1), 0);
    EXPECT_EQ(alpha(1, 3), 128);
    EXPECT_EQ(alpha(0, 3), 64);
    EXPECT_EQ(alpha(1, 0), 0);
}

TEST(ImageContext, RectangleInsideOnePixelCoversItsShare) {
    UIGraphicsBeginImageContextWithOptions({2, 2}, /*opaque*/ false, 1);
    CGContextFillRect(UIGraphicsGetCurrentContext(), {{0.25, 0.25}, {0.5, 0.5}});
    const auto image = takeAndEnd()->CGImage();
    EXPECT_EQ(alphaOf(image->pixels[0]), 64);
    EXPECT_EQ(image->pixels[1], 0U);
}

TEST(ImageContext, ColourOrRectangleThatIsNoNumberPaintsNothing) {
    UIGraphicsBeginImageContextWithOptions({4, 4}, /*opaque*/ false, 1);
    const CGContextRef context = UIGraphicsGetCurrentContext();
    CGContextSetRGBFillColor(context, 1, 1, 1, nan);
    CGContextFillRect(context, {{0, 0}, {4, 4}});
    CGContextSetRGBFillColor(context, nan, 1, 1, 1);
    CGContextFillRect(context, {{0, 0}, {4, 4}});
    CGContextSetRGBFillColor(context, 1, 1, 1, 1);
    for (const CGRect rect :
         {CGRect{{nan, 0}, {4, 4}}, CGRect{{0, 0}, {nan, 4}}, CGRect{{0, infinity}, {4, 4}}, CGRect{{0, 0}, {-4, 4}}})
        CGContextFillRect(context, rect);
    CGContextSetFillColorWithColor(context, nullptr);
    CGContextFillRect(context, {{0, 0}, {4, 4}});
    CGContextSetFillColorWithColor(context, UIColor::patternColor()->CGColor());
    CGContextFillRect(context, {{0, 0}, {4, 4}});
    for (const auto pixel : pixelsAndEnd()) EXPECT_EQ(pixel, 0U);
}

TEST(ImageContext, InfiniteRectangleFillsAll) {
    UIGraphicsBeginImageContextWithOptions({3, 3}, /*opaque*/ false, 1);
    CGContextFillRect(UIGraphicsGetCurrentContext(), {{-1e300, -1e300}, {infinity, 2e300}});
    for (const auto pixel : pixelsAndEnd()) EXPECT_EQ(pixel, test::black);
}

TEST(ImageContext, ComponentsBeyondOneAreCut) {
    UIGraphicsBeginImageContextWithOptions({1, 1}, /*opaque*/ false, 1);
    CGContextSetRGBFillColor(UIGraphicsGetCurrentContext(), 2, -1, 0.5, 7);
    CGContextFillRect(UIGraphicsGetCurrentContext(), {{0, 0}, {1, 1}});
    EXPECT_EQ(takeAndEnd()->CGImage()->pixels[0], 0xffff0080U);
}

TEST(ImageContext, AlphaFillsInAnyOrderNeverOverflow) {
    std::mt19937 random(7);
    std::uniform_real_distribution<double> unit(0, 1);
    UIGraphicsBeginImageContextWithOptions({8, 8}, /*opaque*/ false, 1);
    const CGContextRef context = UIGraphicsGetCurrentContext();
    ExactPixel exact;
    for (int i = 0; i < 2000; ++i) {
        const double r = unit(random), g = unit(random), b = unit(random), a = unit(random);
        CGContextSetRGBFillColor(context, r, g, b, a);
        CGContextFillRect(context, {{0, 0}, {8, 8}});
        exact.over(r, g, b, a);
    }
    for (const auto pixel : pixelsAndEnd()) {
        EXPECT_NEAR(redOf(pixel), exact.red * 255, 2);
        EXPECT_NEAR(greenOf(pixel), exact.green * 255, 2);
        EXPECT_NEAR(blueOf(pixel), exact.blue * 255, 2);
        EXPECT_NEAR(alphaOf(pixel), 255, 1);
    }
}

} // namespace
