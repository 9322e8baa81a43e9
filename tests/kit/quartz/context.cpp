// Contexts: states, transforms, clips, images.

#include "platform/quartz/CGContext.h"

#include "kit/quartz/drawing.h"
#include "kit/quartz/geometry.h"
#include "kit/quartz/graphics_stack.h"
#include "kit/seat.h"
#include "tests/kit/quartz/Surface.h"

#include <gtest/gtest.h>

#include <functional>
#include <numbers>

namespace {

CGImageRef drawn(double edge, const std::function<void(CGContextRef)>& draw) {
    UIGraphicsBeginImageContextWithOptions({edge, edge}, /*opaque*/ false, 1);
    draw(UIGraphicsGetCurrentContext());
    const auto image = UIGraphicsGetImageFromCurrentImageContext();
    UIGraphicsEndImageContext();
    return image->CGImage();
}
std::uint32_t at(const CGImageRef& image, std::size_t x, std::size_t y) { return image->pixels[y * image->width + x]; }

TEST(Context, NilIsTolerated) {
    CGContextSaveGState(nullptr);
    CGContextRestoreGState(nullptr);
    CGContextTranslateCTM(nullptr, 1, 1);
    CGContextScaleCTM(nullptr, 1, 1);
    CGContextClipToRect(nullptr, CGRectZero);
    CGContextSetAlpha(nullptr, 1);
    CGContextSetFillColorWithColor(nullptr, nullptr);
    CGContextSetRGBFillColor(nullptr, 1, 1, 1, 1);
    CGContextSetStrokeColorWithColor(nullptr, nullptr);
    CGContextSetLineWidth(nullptr, 1);
    CGContextFillRect(nullptr, CGRectMake(0, 0, 1, 1));
    CGContextFillPath(nullptr, {});
    CGContextStrokePath(nullptr, {});
    CGContextDrawImage(nullptr, CGRectMake(0, 0, 1, 1), nullptr);
}

TEST(Context, RestoringBringsBackColourTransformClipAndAlpha) {
    const auto image = drawn(4, [](CGContextRef context) {
        CGContextSetRGBFillColor(context, 1, 0, 0, 1);
        CGContextSaveGState(context);
        CGContextSetRGBFillColor(context, 0, 0, 1, 1);
        CGContextTranslateCTM(context, 1, 1);
        CGContextClipToRect(context, {{0, 0}, {1, 1}});
        CGContextSetAlpha(context, 0.5);
        CGContextRestoreGState(context);
        CGContextRestoreGState(context); // one too many
        CGContextFillRect(context, {{0, 0}, {4, 4}});
    });
    for (const auto pixel : image->pixels) EXPECT_EQ(pixel, test::red);
}

TEST(Context, LaterTransformsApplyFirst) {
    const auto image = drawn(8, [](CGContextRef context) {
        CGContextTranslateCTM(context, 2, 2);
        CGContextScaleCTM(context, 2, 2);
        CGContextFillRect(context, {{0, 0}, {1, 1}});
    });
    EXPECT_EQ(at(image, 2, 2), test::black);
    EXPECT_EQ(at(image, 3, 3), test::black);
    EXPECT_EQ(at(image, 4, 3), 0U);
    EXPECT_EQ(at(image, 1, 2), 0U);
}

TEST(Context, ClipsMeet) {
    const auto image = drawn(4, [](CGContextRef context) {
        CGContextClipToRect(context, {{0, 0}, {2, 4}});
        CGContextClipToRect(context, {{1, 0}, {3, 2}});
        CGContextFillRect(context, {{0, 0}, {4, 4}});
    });
    for (std::size_t y = 0; y < 4; ++y)
        for (std::size_t x = 0; x < 4; ++x) EXPECT_EQ(at(image, x, y), x == 1 && y < 2 ? test::black : 0U);
}

TEST(Context, ClipOfNothingLetsNothingThrough) {
    const auto image = drawn(4, [](CGContextRef context) {
        CGContextClipToRect(context, {{0, 0}, {0, 4}});
        CGContextFillRect(context, {{0, 0}, {4, 4}});
        CGContextClipToRect(context, {{0, 0}, {4, 4}});
        CGContextFillRect(context, {{0, 0}, {4, 4}});
    });
    for (const auto pixel : image->pixels) EXPECT_EQ(pixel, 0U);
}

TEST(Context, TurnedClipCutsAlongItsEdges) {
    const auto image = drawn(20, [](CGContextRef context) {
        CGContextTranslateCTM(context, 10, 10);
        CGContextConcatCTM(context, CGAffineTransformMakeRotation(std::numbers::pi / 4));
        CGContextClipToRect(context, {{-5, -5}, {10, 10}});
        CGContextFillRect(context, {{-20, -20}, {40, 40}});
    });
    EXPECT_EQ(at(image, 10, 10), test::black);
    EXPECT_EQ(at(image, 10, 4), test::black);
    EXPECT_EQ(at(image, 5, 5), 0U);
    EXPECT_EQ(at(image, 14, 14), 0U);
}

TEST(Context, AlphaWeakensEveryFill) {
    const auto image = drawn(1, [](CGContextRef context) {
        CGContextSetAlpha(context, 0.5);
        CGContextSetRGBFillColor(context, 1, 0, 0, 0.5);
        CGContextFillRect(context, {{0, 0}, {1, 1}});
    });
    EXPECT_EQ(test::alphaOf(at(image, 0, 0)), 64);
}

TEST(Context, ImageOfItsOwnSizeIsCopiedPixelForPixel) {
    auto picture = std::make_shared<CGImage>();
    picture->width = picture->height = 3;
    for (std::uint32_t i = 0; i < 9; ++i) picture->pixels.push_back(0xff000000U | (i * 0x1c1c1cU));
    const auto image = drawn(3, [&](CGContextRef context) { CGContextDrawImage(context, {{0, 0}, {3, 3}}, picture); });
    EXPECT_EQ(image->pixels, picture->pixels);
}

TEST(Context, ImageWithFewerPixelsThanItSaysIsNotDrawn) {
    auto picture = std::make_shared<CGImage>();
    picture->width = picture->height = 3;
    picture->pixels.resize(5, test::red);
    const auto image = drawn(3, [&](CGContextRef context) { CGContextDrawImage(context, {{0, 0}, {3, 3}}, picture); });
    for (const auto pixel : image->pixels) EXPECT_EQ(pixel, 0U);
}

TEST(Context, CurrentOneNestsAndEndsWithItsScope) {
    ASSERT_EQ(UIGraphicsGetCurrentContext(), nullptr);
    drawn(2, [](CGContextRef context) {
        {
            const seat::CurrentContext none(nullptr);
            EXPECT_EQ(UIGraphicsGetCurrentContext(), nullptr);
            EXPECT_EQ(UIGraphicsGetImageFromCurrentImageContext(), nullptr);
            UIGraphicsEndImageContext(); // not an image context: stays
            EXPECT_EQ(UIGraphicsGetCurrentContext(), nullptr);
        }
        EXPECT_EQ(UIGraphicsGetCurrentContext(), context);
    });
    EXPECT_EQ(UIGraphicsGetCurrentContext(), nullptr);
}

} // namespace
