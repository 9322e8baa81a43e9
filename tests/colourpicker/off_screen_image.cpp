#include "colourpicker/UIImage_CoreGraphics.h"
#include "kit/quartz/screen.h"

#include <gtest/gtest.h>

namespace {

constexpr std::uint32_t opaqueRed = 0xffff0000;

class OffScreenImage : public ::testing::TestWithParam<int> {
protected:
    OffScreenImage() { seat::setMainScreen({375, 667}, GetParam()); }
    ~OffScreenImage() override { seat::setMainScreen({375, 667}, 1); }
};

} // namespace

TEST_P(OffScreenImage, HasTheSizeInPointsAndAsManyPixelsAsTheScreenShows) {
    const auto image = zk_imageWithSize_renderer({10, 10}, [](CGContextRef, CGRect) {});

    ASSERT_TRUE(image);
    EXPECT_EQ(image->size(), (CGSize{10, 10}));
    EXPECT_EQ(image->CGImage()->width, 10u * GetParam());
    EXPECT_EQ(image->CGImage()->height, 10u * GetParam());
}

TEST_P(OffScreenImage, RendererIsCalledOnceWithTheSizeInPointsAtTheOrigin) {
    int calls = 0;
    zk_imageWithSize_renderer({30, 20}, [&](CGContextRef context, CGRect rect) {
        ++calls;
        EXPECT_TRUE(context);
        EXPECT_EQ(context, UIGraphicsGetCurrentContext());
        EXPECT_EQ(rect, (CGRect{{0, 0}, {30, 20}}));
    });
    EXPECT_EQ(calls, 1);
    EXPECT_FALSE(UIGraphicsGetCurrentContext());
}

TEST_P(OffScreenImage, StaysTransparentWhereNothingWasDrawn) {
    const auto image = zk_imageWithSize_renderer({4, 2}, [](CGContextRef context, CGRect) {
        CGContextSetRGBFillColor(context, 1, 0, 0, 1);
        CGContextFillRect(context, {{0, 0}, {2, 2}});
    });
    const CGImage& pixels = *image->CGImage();
    EXPECT_EQ(pixels.pixels.front(), opaqueRed);
    EXPECT_EQ(pixels.pixels[pixels.width - 1], 0u);
}

TEST_P(OffScreenImage, OpaqueOneHasNoTransparentPixel) {
    const auto image = zk_imageWithSize_opaque_renderer({4, 2}, /*opaque*/ true, [](CGContextRef, CGRect) {});
    for (const std::uint32_t pixel : image->CGImage()->pixels) EXPECT_EQ(pixel >> 24, 0xffu);
}

TEST_P(OffScreenImage, WithoutASizeTheRendererRunsAndNoImageComes) {
    bool called = false;
    const auto image = zk_imageWithSize_renderer({0, 10}, [&](CGContextRef context, CGRect rect) {
        called = true;
        CGContextFillRect(context, rect);
    });
    EXPECT_TRUE(called);
    EXPECT_FALSE(image);
    EXPECT_FALSE(UIGraphicsGetCurrentContext());
}

INSTANTIATE_TEST_SUITE_P(AtScale, OffScreenImage, ::testing::Values(1, 2, 3));
