#include "keymap/key_names.h"

#include "kit/foundation/translation.h"

#include <gtest/gtest.h>

namespace {

TEST(KeyName, OfNoKeyIsNone) { EXPECT_EQ(keyDisplayName(-1), "(none)"); }

TEST(KeyName, OfALetterIsItsCapital) {
    for (long code = 4; code <= 29; ++code) EXPECT_EQ(keyDisplayName(code), std::string(1, char('A' + code - 4)));
}

TEST(KeyName, OfTheDigitsOneToNineIsTheDigit) {
    for (long code = 30; code <= 38; ++code) EXPECT_EQ(keyDisplayName(code), std::string(1, char('1' + code - 30)));
}

TEST(KeyName, OfTheDigitZeroIsItsCode) { EXPECT_EQ(keyDisplayName(39), "Key (39)"); }

TEST(KeyName, OfTheFifteenNamedKeysIsTheirSymbol) {
    const std::pair<long, const char*> names[] = {
        {224, "control"},      {225, "left \u21E7"}, {79, "\u2192"},  {80, "\u2190"}, {81, "\u2193"},
        {82, "\u2191"},        {226, "\u2325"},      {227, "\u2318"}, {44, "space"},  {40, "\u23CE"},
        {229, "right \u21E7"}, {42, "\u232B"},       {57, "\u21EA"},  {43, "\u21C6"}, {41, "\u238B"},
    };
    for (const auto& [code, name] : names) EXPECT_EQ(keyDisplayName(code), name);
}

TEST(KeyName, OfTheRightModifiersIsTheirCode) {
    EXPECT_EQ(keyDisplayName(228), "Key (228)");
    EXPECT_EQ(keyDisplayName(230), "Key (230)");
    EXPECT_EQ(keyDisplayName(231), "Key (231)");
}

TEST(KeyName, OfACodeBeyondAByteGoesByItsLowByteForLettersAndDigits) {
    EXPECT_EQ(keyDisplayName(256 + 4), "A");
    EXPECT_EQ(keyDisplayName(512 + 29), "Z");
    EXPECT_EQ(keyDisplayName(256 + 30), "1");
    EXPECT_EQ(keyDisplayName(65536 + 38), "9");
}

TEST(KeyName, OfACodeBeyondAByteIsNeverASymbol) {
    EXPECT_EQ(keyDisplayName(256 + 44), "Key (300)");
    EXPECT_EQ(keyDisplayName(256 + 41), "Key (297)");
    EXPECT_EQ(keyDisplayName(256 + 39), "Key (295)");
}

TEST(KeyName, OfOtherCodesIsTheCode) {
    EXPECT_EQ(keyDisplayName(0), "Key (0)");
    EXPECT_EQ(keyDisplayName(3), "Key (3)");
    EXPECT_EQ(keyDisplayName(-2), "Key (-2)");
    EXPECT_EQ(keyDisplayName(2147483647), "Key (2147483647)");
}

// -252 has the low byte of "A".
TEST(KeyName, OfANegativeCodeGoesByItsLowByteToo) { EXPECT_EQ(keyDisplayName(-252), "A"); }

TEST(KeyName, IsSaidInWordsWhereItIsASymbol) {
    EXPECT_EQ(keySpokenName(41), "Escape");
    EXPECT_EQ(keySpokenName(225), "Left Shift");
    EXPECT_EQ(keySpokenName(-1), "None");
    EXPECT_EQ(keySpokenName(4), "A");
    for (long code = -1; code <= 260; ++code)
        for (const char letter : keySpokenName(code)) EXPECT_GE(letter, ' ') << code;
}

TEST(KeyName, IsSaidInTheUsersLanguageAndShownAsItIs) {
    seat::setTranslator([](const char* text) { return std::string("<") + text + ">"; });
    const std::string spoken = keySpokenName(41);
    const std::string shown = keyDisplayName(44);
    const std::string letter = keySpokenName(4);
    seat::setTranslator(nullptr);

    EXPECT_EQ(spoken, "<Escape>");
    EXPECT_EQ(shown, "space");
    EXPECT_EQ(letter, "A");
}

} // namespace
