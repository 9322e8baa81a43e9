#include "desktop/appearance/font_description.h"

#include <gtest/gtest.h>

namespace {

using seat::parseFontDescription;

TEST(FontDescriptions, NameAndSizeAreToldApart) {
    const auto usual = parseFontDescription("Cantarell 11");
    EXPECT_EQ(usual.family, "Cantarell");
    EXPECT_EQ(usual.pointSize, 11);
    const auto styled = parseFontDescription("Noto Sans, Bold 10.5");
    EXPECT_EQ(styled.family, "Noto Sans  Bold");
    EXPECT_EQ(styled.pointSize, 10.5);
}

TEST(FontDescriptions, SizeMayBeMissing) {
    EXPECT_EQ(parseFontDescription("Sans").family, "Sans");
    EXPECT_EQ(parseFontDescription("Sans").pointSize, 0);
    EXPECT_EQ(parseFontDescription("Mono 1x").family, "Mono 1x");
    EXPECT_EQ(parseFontDescription("").family, "");
    EXPECT_EQ(parseFontDescription("7").family, "7") << "a name alone";
}

TEST(FontDescriptions, SizesThatAreNoneAreNone) {
    for (const char* const text : {"Sans nan", "Sans inf", "Sans -4", "Sans 0", "Sans 1e999"})
        EXPECT_EQ(parseFontDescription(text).pointSize, 0) << text;
}

TEST(FontDescriptions, UsualSizesOfDesktopsAreTheUsualSize) {
    EXPECT_EQ(seat::textScaleForPointSize(0), 1);
    EXPECT_EQ(seat::textScaleForPointSize(9), 1);
    EXPECT_EQ(seat::textScaleForPointSize(11), 1);
    EXPECT_EQ(seat::textScaleForPointSize(16.5), 1.5);
}

} // namespace
