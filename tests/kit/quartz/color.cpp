#include "platform/uikit/UIColor.h"
#include "tests/kit/quartz/numbers.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

struct Rgb {
    double red = -1, green = -1, blue = -1, alpha = -1;
};
Rgb rgbOf(const UIColor& color) {
    Rgb c;
    EXPECT_TRUE(color.getRed_green_blue_alpha(&c.red, &c.green, &c.blue, &c.alpha));
    return c;
}
struct Hsb {
    double hue = -1, saturation = -1, brightness = -1, alpha = -1;
};
Hsb hsbOf(const UIColor& color) {
    Hsb c;
    EXPECT_TRUE(color.getHue_saturation_brightness_alpha(&c.hue, &c.saturation, &c.brightness, &c.alpha));
    return c;
}
std::shared_ptr<UIColor> hsb(double h, double s, double b) {
    return UIColor::colorWithHue_saturation_brightness_alpha(h, s, b, 1);
}

using test::infinity;
using test::nan;

TEST(Color, KeepsComponentsAsGivenAlsoBeyondOne) {
    const Rgb c = rgbOf(*UIColor::colorWithRed_green_blue_alpha(1.5, -0.5, 0.1, 2));
    EXPECT_EQ(c.red, 1.5);
    EXPECT_EQ(c.green, -0.5);
    EXPECT_EQ(c.blue, 0.1);
    EXPECT_EQ(c.alpha, 2);
}

TEST(Color, HexconeSectorsGiveTheSixPureColours) {
    const double expected[6][3] = {{1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {0, 1, 1}, {0, 0, 1}, {1, 0, 1}};
    for (int i = 0; i < 6; ++i) {
        const Rgb c = rgbOf(*hsb(i / 6.0, 1, 1));
        EXPECT_NEAR(c.red, expected[i][0], 1e-15) << i;
        EXPECT_NEAR(c.green, expected[i][1], 1e-15) << i;
        EXPECT_NEAR(c.blue, expected[i][2], 1e-15) << i;
    }
}

TEST(Color, HueOneIsRed) {
    const Rgb c = rgbOf(*hsb(1, 1, 1));
    EXPECT_EQ(c.red, 1);
    EXPECT_EQ(c.green, 0);
    EXPECT_EQ(c.blue, 0);
    EXPECT_EQ(hsbOf(*hsb(1, 1, 1)).hue, 0);
    for (const double huge : {1e308, -1e308}) {
        const Rgb color = rgbOf(*hsb(huge, 1, 1));
        EXPECT_EQ(color.red, 1) << huge;
        EXPECT_EQ(color.green, 0) << huge;
        EXPECT_EQ(color.blue, 0) << huge;
    }
}

TEST(Color, HueBelowZeroCountsFromTheOtherEnd) {
    const Rgb c = rgbOf(*hsb(-1.0 / 3, 1, 1));
    EXPECT_NEAR(c.red, 0, 1e-12);
    EXPECT_NEAR(c.green, 0, 1e-12);
    EXPECT_EQ(c.blue, 1);
}

TEST(Color, RoundTripThroughHueKeepsEveryByteColour) {
    for (int r = 0; r < 256; r += 15)
        for (int g = 0; g < 256; g += 15)
            for (int b = 0; b < 256; b += 15) {
                const Hsb there = hsbOf(*UIColor::colorWithRed_green_blue_alpha(r / 255.0, g / 255.0, b / 255.0, 1));
                const Rgb back = rgbOf(*hsb(there.hue, there.saturation, there.brightness));
                ASSERT_NEAR(back.red, r / 255.0, 1e-14) << r << ' ' << g << ' ' << b;
                ASSERT_NEAR(back.green, g / 255.0, 1e-14) << r << ' ' << g << ' ' << b;
                ASSERT_NEAR(back.blue, b / 255.0, 1e-14) << r << ' ' << g << ' ' << b;
            }
}

TEST(Color, BlackAndGreysHaveNoHueAndNoSaturation) {
    for (const double white : {0.0, 0.25, 1.0}) {
        const Hsb c = hsbOf(*UIColor::colorWithWhite_alpha(white, 0.5));
        EXPECT_EQ(c.hue, 0);
        EXPECT_EQ(c.saturation, 0);
        EXPECT_EQ(c.brightness, white);
        EXPECT_EQ(c.alpha, 0.5);
    }
}

TEST(Color, ValuesThatAreNoNumbersGoThroughWithoutHarm) {
    EXPECT_EQ(rgbOf(*hsb(nan, 1, 1)).red, 1);
    EXPECT_EQ(rgbOf(*hsb(infinity, 1, 1)).red, 1);
    const Hsb unsaturated = hsbOf(*hsb(0.3, nan, 0.5));
    EXPECT_TRUE(std::isnan(unsaturated.saturation));
    EXPECT_EQ(unsaturated.brightness, 0.5);
    EXPECT_EQ(unsaturated.hue, 0);
    EXPECT_TRUE(std::isfinite(rgbOf(*hsb(1e300, 1, 1)).red));
}

TEST(Color, PatternAnswersNothingAndLeavesTheOutputsAlone) {
    const auto pattern = UIColor::patternColor();
    double a = 1, b = 2, c = 3, d = 4;
    EXPECT_FALSE(pattern->getRed_green_blue_alpha(&a, &b, &c, &d));
    EXPECT_FALSE(pattern->getHue_saturation_brightness_alpha(&a, &b, &c, &d));
    EXPECT_EQ(a, 1);
    EXPECT_EQ(b, 2);
    EXPECT_EQ(c, 3);
    EXPECT_EQ(d, 4);
    EXPECT_EQ(pattern->CGColor(), nullptr);
}

TEST(Color, OutputsMayBeLeftOut) {
    double brightness = 0;
    EXPECT_TRUE(UIColor::redColor()->getHue_saturation_brightness_alpha(nullptr, nullptr, &brightness, nullptr));
    EXPECT_EQ(brightness, 1);
    EXPECT_TRUE(UIColor::redColor()->getRed_green_blue_alpha(nullptr, nullptr, nullptr, nullptr));
}

TEST(Color, NamedOnesAreSharedObjects) {
    EXPECT_EQ(UIColor::whiteColor(), UIColor::whiteColor());
    EXPECT_EQ(UIColor::clearColor(), UIColor::clearColor());
    EXPECT_EQ(rgbOf(*UIColor::clearColor()).alpha, 0);
    EXPECT_NEAR(rgbOf(*UIColor::lightGrayColor()).green, 0.667, 1e-3);
    EXPECT_EQ(rgbOf(*UIColor::blueColor()).blue, 1);
}

TEST(Color, EqualityIsByComponents) {
    const auto grey = UIColor::colorWithWhite_alpha(0.5, 1);
    EXPECT_TRUE(grey->isEqual(*UIColor::colorWithRed_green_blue_alpha(0.5, 0.5, 0.5, 1)));
    EXPECT_FALSE(grey->isEqual(*UIColor::colorWithWhite_alpha(0.5, 0.9)));
    const auto pattern = UIColor::patternColor();
    EXPECT_TRUE(pattern->isEqual(*pattern));
    EXPECT_FALSE(pattern->isEqual(*grey));
    EXPECT_FALSE(pattern->isEqual(*UIColor::patternColor()));
}

} // namespace
