#include "colourpicker/HSVColor.h"
#include "colourpicker/colour_bytes.h"
#include "colourpicker/truncation.h"
#include "tests/colourpicker/PickerScene.h"
#include "tests/colourpicker/reference_tables.h"

#include "platform/uikit/UIColor.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>

namespace {

HSVColor tripleOf(const std::shared_ptr<UIColor>& color) {
    HSVColor hsv{-1, -1, -1};
    HSVColorFromUIColor(color, hsv);
    return hsv;
}

} // namespace

TEST(HSVColor, IsThreeDoublesHueThenSaturationThenBrightness) {
    HSVColor hsv;
    HSVColorFromUIColor(hsb(0.25, 0.5, 0.75), hsv);
    double fields[3];
    static_assert(sizeof fields == sizeof hsv);
    std::memcpy(fields, &hsv, sizeof fields);
    EXPECT_EQ(fields[0], 0.25);
    EXPECT_EQ(fields[1], 0.5);
    EXPECT_EQ(fields[2], 0.75);
}

TEST(HSVColor, RedIsHueZeroAndFull) { EXPECT_EQ(tripleOf(rgb(1, 0, 0)), (HSVColor{0, 1, 1})); }

TEST(HSVColor, BlackHasNeitherHueNorSaturation) { EXPECT_EQ(tripleOf(rgb(0, 0, 0)), (HSVColor{0, 0, 0})); }

TEST(HSVColor, WhiteHasNoSaturation) { EXPECT_EQ(tripleOf(UIColor::whiteColor()), (HSVColor{0, 0, 1})); }

TEST(HSVColor, AlphaIsDropped) {
    EXPECT_EQ(tripleOf(rgb(0, 1, 0, 0.25)).v, 1);
    EXPECT_EQ(rgba(colorFromHSV({0.5, 1, 1})).alpha, 1);
}

TEST(HSVColor, PatternAndNilLeaveTheRecordAsItWas) {
    HSVColor hsv{0.1, 0.2, 0.3};

    HSVColorFromUIColor(UIColor::patternColor(), hsv);
    HSVColorFromUIColor(nullptr, hsv);

    EXPECT_EQ(hsv, (HSVColor{0.1, 0.2, 0.3}));
}

TEST(HSVColor, HueOneIsRedLikeHueZero) { EXPECT_TRUE(colorFromHSV({1, 1, 1})->isEqual(*colorFromHSV({0, 1, 1}))); }

TEST(HSVColor, EveryGreyHasHueZeroAndComesBack) {
    for (const ReferenceColor& grey : referenceGreys) {
        const HSVColor hsv = tripleOf(rgb(grey.red, grey.green, grey.blue));
        EXPECT_EQ(hsv, (HSVColor{grey.h, grey.s, grey.v}));
        EXPECT_EQ(rgba(colorFromHSV(hsv)).green, grey.green);
    }
    EXPECT_EQ(std::size(referenceGreys), 256u);
}

TEST(HSVColor, FourThousandColoursGoThereAndBack) {
    for (const ReferenceColor& color : referenceColors) {
        const HSVColor hsv = tripleOf(rgb(color.red, color.green, color.blue));
        EXPECT_NEAR(hsv.h, color.h, 1e-14);
        EXPECT_NEAR(hsv.s, color.s, 1e-14);
        EXPECT_NEAR(hsv.v, color.v, 1e-14);
        const RGBA back = rgba(colorFromHSV(hsv));
        EXPECT_NEAR(back.red, color.red, 1e-14);
        EXPECT_NEAR(back.green, color.green, 1e-14);
        EXPECT_NEAR(back.blue, color.blue, 1e-14);
    }
    EXPECT_EQ(std::size(referenceColors), 4096u);
}

TEST(ColorBytes, AreCutAndNotRounded) {
    const ColorBytes bytes = colorBytes(rgb(0.5, 0.999, 1));
    EXPECT_EQ(bytes.red, 127);
    EXPECT_EQ(bytes.green, 254);
    EXPECT_EQ(bytes.blue, 255);
}

TEST(ColorBytes, ConversionsSaturateAndNoNumberIsZero) {
    EXPECT_EQ(truncatedToInt(std::nan("")), 0);
    EXPECT_EQ(truncatedToInt(INFINITY), std::numeric_limits<std::int32_t>::max());
    EXPECT_EQ(truncatedToInt(-INFINITY), std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(truncatedToInt(3e9), std::numeric_limits<std::int32_t>::max());
    EXPECT_EQ(truncatedToInt(-1.9), -1);
    EXPECT_EQ(truncatedToInt(2147483646.5), 2147483646);
}
