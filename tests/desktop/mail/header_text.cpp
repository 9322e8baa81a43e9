#include "desktop/mail/header_text.h"

#include "kit/foundation/base64.h"

#include <gtest/gtest.h>

#include <regex>
#include <sstream>

namespace {

// What a mail program shows for the value: line folds taken away, encoded words decoded.
std::string shown(std::string value) {
    value = std::regex_replace(value, std::regex("\r\n "), " ");
    const std::regex word("=\\?utf-8\\?B\\?([A-Za-z0-9+/=]*)\\?=( (?==\\?))?");
    std::string text;
    auto from = value.cbegin();
    for (std::sregex_iterator match(value.begin(), value.end(), word), end; match != end; ++match) {
        text.append(from, (*match)[0].first);
        const auto bytes = seat::decodeBase64((*match)[1].str());
        if (bytes) text.append(bytes->begin(), bytes->end());
        from = (*match)[0].second;
    }
    return text.append(from, value.cend());
}

std::size_t longestLine(const std::string& value) {
    std::size_t longest = 0;
    std::istringstream lines(value);
    for (std::string line; std::getline(lines, line);) longest = std::max(longest, line.size());
    return longest;
}

TEST(HeaderText, PlainTextStaysAsItIs) {
    EXPECT_EQ(seat::headerText("Pairing the controller"), "Pairing the controller");
    EXPECT_EQ(seat::headerText(""), "");
}

TEST(HeaderText, OtherTextIsEncodedWhole) {
    EXPECT_EQ(seat::headerText("Grüße"), "=?utf-8?B?R3LDvMOfZQ==?=");
    EXPECT_EQ(shown(seat::headerText("Grüße an alle")), "Grüße an alle");
}

TEST(HeaderText, TextThatLooksEncodedIsEncodedOnceMore) {
    EXPECT_EQ(shown(seat::headerText("=?utf-8?B?YQ==?=")), "=?utf-8?B?YQ==?=");
}

TEST(HeaderText, LongTextIsFoldedAndComesBack) {
    std::string ascii;
    std::string other;
    for (int i = 0; i < 60; ++i) {
        ascii += "word ";
        other += "größer ";
    }
    for (const auto& text : {ascii, other}) {
        EXPECT_LE(longestLine(seat::headerText(text)), 78u);
        EXPECT_EQ(shown(seat::headerText(text)), text);
    }
}

TEST(HeaderText, NoHeaderCanBeSmuggledIn) {
    EXPECT_EQ(seat::headerText("a\r\nBcc: b@c.example"), "a  Bcc: b@c.example");
    EXPECT_EQ(seat::headerRecipients("a@b.example\nBcc: x"), "a@b.example Bcc: x");
}

TEST(HeaderRecipients, AddressesStayAsTheyAre) {
    EXPECT_EQ(seat::headerRecipients("a@b.example"), "a@b.example");
    EXPECT_EQ(seat::headerRecipients(" a@b.example ,, Ann <c@d.example>,"), "a@b.example, Ann <c@d.example>");
    EXPECT_EQ(seat::headerRecipients(""), "");
}

TEST(HeaderRecipients, NamesAreEncodedAndAddressesAreNot) {
    EXPECT_EQ(seat::headerRecipients("Jörg Müller <j@b.example>, a@b.example"),
              "=?utf-8?B?SsO2cmcgTcO8bGxlcg==?= <j@b.example>, a@b.example");
    EXPECT_EQ(shown(seat::headerRecipients("\"Müller, Jörg\" <j@b.example>")), "Müller, Jörg <j@b.example>");
    EXPECT_EQ(seat::headerRecipients("jörg@b.example"), "jörg@b.example");
}

TEST(HeaderRecipients, CommasInQuotesSeparateNothing) {
    EXPECT_EQ(seat::headerRecipients("\"Miller, Ann\" <a@b.example>, c@d.example"),
              "\"Miller, Ann\" <a@b.example>, c@d.example");
}

TEST(HeaderRecipients, CommasInAngleBracketsSeparateNothing) {
    EXPECT_EQ(seat::headerRecipients("Ann <@relay.example,@other.example:a@b.example>,c@d.example"),
              "Ann <@relay.example,@other.example:a@b.example>, c@d.example");
}

TEST(HeaderRecipients, ManyStandOnLinesOfTheirOwn) {
    std::string many;
    for (int i = 0; i < 30; ++i) many += "somebody@somewhere.example, ";

    const std::string value = seat::headerRecipients(many);

    EXPECT_LE(longestLine(value), 78u);
    EXPECT_EQ(std::count(value.begin(), value.end(), '@'), 30);
}

} // namespace
