#include "platform/quartz/CAGradientLayer.h"
#include "platform/uikit/UIBezierPath.h"
#include "platform/uikit/UIScreen.h"
#include "tests/kit/quartz/Surface.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace {

TEST(Threads, EachHasItsOwnStackOfContexts) {
    UIGraphicsBeginImageContextWithOptions({2, 2}, /*opaque*/ false, 1);
    CGContextRef seen = UIGraphicsGetCurrentContext();
    std::thread([&seen] { seen = UIGraphicsGetCurrentContext(); }).join();
    EXPECT_EQ(seen, nullptr);
    UIGraphicsEndImageContext();
}

TEST(Threads, ManyDrawImagesAtOnce) {
    std::vector<std::thread> threads;
    std::atomic<int> right = 0;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&right, t] {
            for (int i = 0; i < 20; ++i) {
                UIGraphicsBeginImageContextWithOptions({40, 40}, /*opaque*/ false, 0);
                const CGContextRef context = UIGraphicsGetCurrentContext();
                CGContextSetFillColorWithColor(context, t % 2 ? UIColor::redColor()->CGColor()
                                                              : UIColor::blueColor()->CGColor());
                CGContextFillRect(context, {{0, 0}, {40, 20}});
                UIBezierPath::bezierPathWithOvalInRect({{0, 0}, {40, 40}})->fill();
                const auto image = UIGraphicsGetImageFromCurrentImageContext()->CGImage();
                UIGraphicsEndImageContext();
                right += image->pixels[image->width / 2 + image->width * (image->height - 3)] ==
                         (t % 2 ? test::red : test::blue);
            }
        });
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(right, 80);
}

TEST(Threads, LayersAreSetUpOnAWorkerWhileTheScreenChangesAndLayersAreDrawn) {
    const auto root = test::layerWithFrame({{0, 0}, {20, 20}}, test::rgb(0, 1, 0));
    std::shared_ptr<CALayer> made;
    std::thread worker([&made] {
        for (int i = 0; i < 200; ++i) {
            const auto layer = CALayer::alloc()->initWithLayer(nullptr);
            layer->setFrame({{0, 0}, {10, 10}});
            layer->setBackgroundColor(test::rgb(1, 0, 0));
            layer->setOpacity(0.5);
            layer->setOpacity(1);
            const auto gradient = CAGradientLayer::alloc()->init();
            gradient->setColors({test::rgb(1, 0, 0), test::rgb(0, 0, 0)});
            layer->addSublayer(gradient);
            EXPECT_GT(UIScreen::mainScreen()->scale(), 0);
            made = layer;
        }
    });
    test::Surface surface(40, 40);
    for (int i = 0; i < 200; ++i) {
        const test::ScreenScale scale(i % 3 + 1);
        surface.render(*root, 2);
        root->setOpacity(i % 2 ? 1 : 0.9);
    }
    worker.join();
    root->addSublayer(made);
    surface.render(*root, 2);
    EXPECT_EQ(surface.at(5, 5), test::red);
}

} // namespace
