// How leniently a colour's text is read, case by case.

#include "ledcolour/hex_colour.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>

namespace {

// The six digits that would have been read as the same colour.
std::string same(const std::string& text) {
    const JVNColorPixel pixel = JVNColorPixelForHexString(text);
    char digits[7];
    std::snprintf(digits, sizeof digits, "%02x%02x%02x", pixel.red, pixel.green, pixel.blue);
    return digits;
}

} // namespace

TEST(HexColourReading, CaseDoesNotCount) {
    EXPECT_EQ(same("004efd"), "004efd");
    EXPECT_EQ(same("004EFD"), "004efd");
    EXPECT_EQ(same("004eFd"), "004efd");
}

TEST(HexColourReading, NumberSignInFrontMakesItBlack) { EXPECT_EQ(same("#004EFD"), "000000"); }

TEST(HexColourReading, PrefixOfHexadecimalNumbersIsSkipped) {
    EXPECT_EQ(same("0x004EFD"), "004efd");
    EXPECT_EQ(same("0X004EFD"), "004efd");
}

TEST(HexColourReading, PrefixAloneIsBlack) { EXPECT_EQ(same("0x"), "000000"); }

TEST(HexColourReading, ThreeDigitsAreNoShorthand) { EXPECT_EQ(same("FFF"), "000fff"); }

TEST(HexColourReading, OfEightDigitsTheLastSixCount) { EXPECT_EQ(same("12004EFD"), "004efd"); }

TEST(HexColourReading, BlankEndsTheNumber) { EXPECT_EQ(same("00 4EFD"), "000000"); }

TEST(HexColourReading, WhiteSpaceInFrontIsSkipped) { EXPECT_EQ(same(" \t\n004EFD"), "004efd"); }

TEST(HexColourReading, WhatFollowsTheDigitsIsIgnored) { EXPECT_EQ(same("4EFD!"), "004efd"); }

TEST(HexColourReading, NumberBeyondThirtyTwoBitsIsWhite) {
    EXPECT_EQ(same("100000000"), "ffffff");
    EXPECT_EQ(same("fffffffff"), "ffffff");
}

TEST(HexColourReading, LeadingZerosAreFree) { EXPECT_EQ(same("00000000000012ab34"), "12ab34"); }

TEST(HexColourReading, TextWithoutANumberIsBlack) {
    for (const char* text : {"", " ", "red!", "-1", "+1", "ü"}) EXPECT_EQ(same(text), "000000") << text;
}

TEST(HexColourReading, WordThatBeginsWithHexadecimalLettersIsReadAsFarAsTheyGo) {
    EXPECT_EQ(same("deep"), "000dee");
    EXPECT_EQ(same("facade"), "facade");
}
