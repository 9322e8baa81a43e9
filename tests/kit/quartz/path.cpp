#include "platform/uikit/UIBezierPath.h"

#include "tests/kit/quartz/Surface.h"

#include <gtest/gtest.h>

namespace {

using test::alphaOf;

CGImageRef filled(const UIBezierPath& path, double scale) {
    UIGraphicsBeginImageContextWithOptions({20, 20}, /*opaque*/ false, scale);
    UIColor::redColor()->setFill();
    path.fill();
    const auto image = UIGraphicsGetImageFromCurrentImageContext();
    UIGraphicsEndImageContext();
    return image->CGImage();
}
int alphaAt(const CGImage& image, std::size_t x, std::size_t y) { return alphaOf(image.pixels[y * image.width + x]); }

TEST(Path, RoundsOnlyTheCornersAskedFor) {
    const auto path = UIBezierPath::bezierPathWithRoundedRect_byRoundingCorners_cornerRadii(
        {{0, 0}, {20, 20}}, UIRectCornerTopLeft | UIRectCornerTopRight, {6, 6});

    const auto image = filled(*path, 1);

    EXPECT_LT(alphaAt(*image, 0, 0), 10);
    EXPECT_LT(alphaAt(*image, 19, 0), 10);
    EXPECT_EQ(alphaAt(*image, 0, 19), 255);
    EXPECT_EQ(alphaAt(*image, 19, 19), 255);
    EXPECT_EQ(alphaAt(*image, 10, 0), 255);
    EXPECT_EQ(alphaAt(*image, 0, 10), 255);
}

TEST(Path, RadiiBeyondHalfTheRectangleAreCutToIt) {
    const auto pill = UIBezierPath::bezierPathWithRoundedRect_byRoundingCorners_cornerRadii(
        {{0, 0}, {20, 20}}, UIRectCornerAllCorners, {500, 500});
    const auto disc = UIBezierPath::bezierPathWithOvalInRect({{0, 0}, {20, 20}});
    EXPECT_EQ(filled(*pill, 2)->pixels, filled(*disc, 2)->pixels);
}

TEST(Path, DiscCoversItsArea) {
    const auto image = filled(*UIBezierPath::bezierPathWithOvalInRect({{0, 0}, {20, 20}}), 4);
    double area = 0;
    for (const auto pixel : image->pixels) area += alphaOf(pixel) / 255.0;
    EXPECT_NEAR(area, 3.14159 * 40 * 40, 15);
    EXPECT_EQ(alphaAt(*image, 40, 40), 255);
}

TEST(Path, WithoutAreaOrWithNegativeSizeFillsNothing) {
    for (const CGRect rect : {CGRect{{0, 0}, {0, 10}}, CGRect{{0, 0}, {10, -8}}}) {
        const auto path = UIBezierPath::bezierPathWithRoundedRect_byRoundingCorners_cornerRadii(rect, 3, {4, 4});
        path->closePath();
        const auto image = filled(*path, 1);
        for (const auto pixel : image->pixels) ASSERT_EQ(pixel, 0U);
    }
}

TEST(Path, FirstLineBeginsWhereNoPointIs) {
    const auto path = UIBezierPath::bezierPath();
    path->addLineToPoint({0, 0});
    path->addLineToPoint({20, 0});
    path->addLineToPoint({20, 20});
    path->closePath();
    const auto image = filled(*path, 1);
    EXPECT_EQ(alphaAt(*image, 15, 5), 255);
    EXPECT_EQ(alphaAt(*image, 5, 15), 0);
}

TEST(Path, StrokeIsAsWideAsItsLineAndLeavesTheContextsOwnWidth) {
    UIGraphicsBeginImageContextWithOptions({20, 20}, /*opaque*/ false, 1);
    UIColor::redColor()->setStroke();
    const auto path = UIBezierPath::bezierPath();
    path->moveToPoint({0, 10});
    path->addLineToPoint({20, 10});
    path->setLineWidth(4);
    path->stroke();
    const auto image = UIGraphicsGetImageFromCurrentImageContext()->CGImage();
    UIGraphicsEndImageContext();
    EXPECT_EQ(alphaAt(*image, 10, 7), 0);
    EXPECT_EQ(alphaAt(*image, 10, 8), 255);
    EXPECT_EQ(alphaAt(*image, 10, 11), 255);
    EXPECT_EQ(alphaAt(*image, 10, 12), 0);
}

TEST(Path, WithoutAContextDrawsNothing) {
    const auto path = UIBezierPath::bezierPathWithOvalInRect({{0, 0}, {20, 20}});
    ASSERT_EQ(UIGraphicsGetCurrentContext(), nullptr);
    path->fill();
    path->stroke();
    UIColor::redColor()->setFill();
    EXPECT_EQ(UIGraphicsGetCurrentContext(), nullptr);
}

} // namespace
