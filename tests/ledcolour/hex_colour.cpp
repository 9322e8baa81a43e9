#include "ledcolour/hex_colour.h"

#include "platform/uikit/UIColor.h"
#include "tests/colourpicker/PickerScene.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <vector>

namespace {

unsigned packed(const std::string& hex) {
    const JVNColorPixel pixel = JVNColorPixelForHexString(hex);
    return pixel.red << 16u | pixel.green << 8u | pixel.blue;
}

std::string hexOfByte(int value) {
    char text[3];
    std::snprintf(text, sizeof text, "%02x", value);
    return text;
}

std::string roundTrip(const std::string& hex) { return JVNStringColorForUIColor(JVNColorForHexString(hex)); }

} // namespace

TEST(HexColour, DefaultIsABlue) {
    EXPECT_STREQ(JVNDefaultLEDColor, "004EFD");
    const RGBA color = rgba(JVNColorForHexString(JVNDefaultLEDColor));
    EXPECT_EQ(color.red, 0);
    EXPECT_EQ(color.green, 78 * 0.00392156862745098);
    EXPECT_EQ(color.blue, 253 * 0.00392156862745098);
    EXPECT_EQ(color.alpha, 1);
}

TEST(HexColour, UpperAndLowerCaseAreTheSame) { EXPECT_EQ(packed("004efd"), packed("004EFD")); }

TEST(HexColour, PixelHoldsBlueGreenRedInMemory) {
    const JVNColorPixel pixel = JVNColorPixelForHexString("004EFD");
    unsigned char bytes[3];
    std::memcpy(bytes, &pixel, sizeof bytes);
    EXPECT_EQ(bytes[0], 0xFD);
    EXPECT_EQ(bytes[1], 0x4E);
    EXPECT_EQ(bytes[2], 0x00);
}

TEST(HexColour, IsReadAsANumberOfWhichTwentyFourBitsCount) {
    const std::pair<const char*, unsigned> cases[] = {
        {"004EFD", 0x004EFD},
        {"#004EFD", 0},
        {"0x004EFD", 0x004EFD},
        {"0X004EFD", 0x004EFD},
        {"FFF", 0x000FFF},
        {"12004EFD", 0x004EFD},
        {"00 4EFD", 0},
        {"", 0},
        {"   ", 0},
        {"red", 0},
        {" \t\n004EFD", 0x4EFD},
        {"4EFDxyz", 0x4EFD},
        {"FFFFFFFF", 0xFFFFFF},
        {"100000000", 0xFFFFFF},
        {"ffffffffffffffffffffff", 0xFFFFFF},
        {"0000000000004EFD", 0x4EFD},
        {"0x", 0},
        {"-1", 0},
        {"\xc3\xa9", 0},
    };
    for (const auto& [text, value] : cases) {
        EXPECT_EQ(packed(text), value) << text;
        const RGBA color = rgba(JVNColorForHexString(text));
        EXPECT_EQ(color.red, (value >> 16) * 0.00392156862745098) << text;
        EXPECT_EQ(color.green, (value >> 8 & 0xFF) * 0.00392156862745098) << text;
        EXPECT_EQ(color.blue, (value & 0xFF) * 0.00392156862745098) << text;
        EXPECT_EQ(color.alpha, 1);
    }
}

TEST(HexColour, IsWrittenInLowerCaseAndCut) {
    EXPECT_EQ(roundTrip("004EFD"), "004efd");
    EXPECT_EQ(JVNStringColorForUIColor(UIColor::whiteColor()), "ffffff");
    EXPECT_EQ(JVNStringColorForUIColor(rgb(0.5, 0.999, 1)), "7ffeff");
    EXPECT_EQ(JVNStringColorForUIColor(rgb(0.01, 0, 0, 0.5)), "020000");
    EXPECT_EQ(JVNStringColorForUIColor(UIColor::colorWithWhite_alpha(0.5, 1)), "7f7f7f");
    EXPECT_EQ(JVNStringColorForUIColor(hsb(0.5, 1, 0.5)), "007f7f");
}

std::string thrice(const std::string& text) { return text + text + text; }

TEST(HexColour, TwentyFourByteValuesComeBackOneLower) {
    const std::vector<int> lossy{33, 37,  41,  45,  49,  53,  57,  61,  66,  74,  82,  90,
                                 98, 106, 114, 122, 132, 148, 164, 180, 196, 212, 228, 244};
    for (int value = 0; value < 256; ++value) {
        const bool isLossy = std::find(lossy.begin(), lossy.end(), value) != lossy.end();
        const std::string byte = hexOfByte(value);
        const std::string back = hexOfByte(isLossy ? value - 1 : value);
        EXPECT_EQ(roundTrip(thrice(byte)), thrice(back));
    }
    EXPECT_EQ(roundTrip("212121"), "202020");
    EXPECT_EQ(lossy.size(), 24u);
}

TEST(HexColour, ComponentsOutsideAreNotClamped) {
    EXPECT_EQ(JVNStringColorForUIColor(rgb(1.5, 0, 0)), "17e0000");
    EXPECT_EQ(JVNStringColorForUIColor(rgb(0, -0.5, 0)), "00ffffff8100");
    EXPECT_EQ(JVNStringColorForUIColor(rgb(0, 0, -0.001)), "000000") << "cut towards zero";
}

TEST(HexColour, HugeAndNoNumbersSaturate) {
    EXPECT_EQ(JVNStringColorForUIColor(rgb(1e300, NAN, -1e300)), "7fffffff0080000000");
    EXPECT_EQ(JVNStringColorForUIColor(rgb(INFINITY, 0, -INFINITY)), "7fffffff0080000000");
}

TEST(HexColour, ColourWithoutComponentsIsWrittenAsBlack) {
    EXPECT_EQ(JVNStringColorForUIColor(UIColor::patternColor()), "000000");
    EXPECT_EQ(JVNStringColorForUIColor(nullptr), "000000");
}
