// Off-screen images within one another, beside one another, and of sizes that are no whole pixels.

#include "colourpicker/UIImage_CoreGraphics.h"
#include "kit/quartz/screen.h"

#include <gtest/gtest.h>

#include <array>
#include <thread>

namespace {

void fill(CGContextRef context, CGRect rect, double red) {
    CGContextSetRGBFillColor(context, red, 0, 1 - red, 1);
    CGContextFillRect(context, rect);
}

} // namespace

TEST(OffScreenImages, RendererMayMakeAnotherImage) {
    std::shared_ptr<UIImage> inner;
    const auto outer = zk_imageWithSize_renderer({4, 4}, [&](CGContextRef context, CGRect rect) {
        inner = zk_imageWithSize_renderer({2, 2}, [](CGContextRef own, CGRect all) { fill(own, all, 1); });
        EXPECT_EQ(UIGraphicsGetCurrentContext(), context);
        fill(context, rect, 0);
    });
    EXPECT_EQ(outer->size(), (CGSize{4, 4}));
    EXPECT_EQ(outer->CGImage()->pixels.front(), 0xff0000ffu);
    EXPECT_EQ(inner->size(), (CGSize{2, 2}));
    EXPECT_EQ(inner->CGImage()->pixels.front(), 0xffff0000u);
    EXPECT_FALSE(UIGraphicsGetCurrentContext());
}

TEST(OffScreenImages, ThreadsDrawBesideOneAnother) {
    std::array<std::shared_ptr<UIImage>, 4> images;
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < images.size(); ++i)
        threads.emplace_back([&images, i] {
            images[i] = zk_imageWithSize_renderer({50, 50}, [i](CGContextRef context, CGRect rect) {
                for (int times = 0; times < 50; ++times) fill(context, rect, i % 2 ? 1 : 0);
            });
        });
    for (auto& thread : threads) thread.join();
    for (std::size_t i = 0; i < images.size(); ++i)
        for (const std::uint32_t pixel : images[i]->CGImage()->pixels)
            ASSERT_EQ(pixel, i % 2 ? 0xffff0000u : 0xff0000ffu);
}

TEST(OffScreenImages, RectangleIsTheSizeAskedForAlsoBetweenThePixels) {
    seat::setMainScreen({375, 667}, 2);
    CGRect given;
    const auto image = zk_imageWithSize_renderer({10.2, 7}, [&](CGContextRef, CGRect rect) { given = rect; });
    EXPECT_EQ(given, (CGRect{{0, 0}, {10.2, 7}}));
    EXPECT_EQ(image->CGImage()->width, 21u);
    EXPECT_EQ(image->CGImage()->height, 14u);
    seat::setMainScreen({375, 667}, 1);
}

TEST(OffScreenImages, EachIsANewOne) {
    const auto draw = [](CGContextRef context, CGRect rect) { fill(context, rect, 1); };
    const auto first = zk_imageWithSize_renderer({2, 2}, draw);
    const auto second = zk_imageWithSize_renderer({2, 2}, draw);
    EXPECT_NE(first, second);
    EXPECT_NE(first->CGImage(), second->CGImage());
}
