#include "ledcolour/colour_words.h"

#include "ledcolour/hex_colour.h"
#include "platform/uikit/UIColor.h"

#include <gtest/gtest.h>

namespace {

TEST(ColourWords, ColoursAreCalledAsPeopleCallThem) {
    const auto words = [](const char* digits) { return JVNWordsForUIColor(JVNColorForHexString(digits)); };
    EXPECT_EQ(words("004EFD"), "blue");
    EXPECT_EQ(words("ff0000"), "red");
    EXPECT_EQ(words("ff0010"), "red");
    EXPECT_EQ(words("ffa500"), "orange");
    EXPECT_EQ(words("ffff00"), "yellow");
    EXPECT_EQ(words("00ff00"), "green");
    EXPECT_EQ(words("00ccff"), "turquoise");
    EXPECT_EQ(words("8000ff"), "violet");
    EXPECT_EQ(words("ff00c0"), "pink");
    EXPECT_EQ(words("000080"), "dark blue");
    EXPECT_EQ(words("a0c0ff"), "pale blue");
    EXPECT_EQ(words("ffffff"), "white");
    EXPECT_EQ(words("808080"), "gray");
    EXPECT_EQ(words("303030"), "dark gray");
    EXPECT_EQ(words("000000"), "black");
}

TEST(ColourWords, WhatHasNoComponentsHasNoWords) {
    EXPECT_EQ(JVNWordsForUIColor(nullptr), "");
    EXPECT_EQ(JVNWordsForUIColor(UIColor::patternColor()), "");
}

} // namespace
