#include "app/tour/Script.h"
#include "app/tour/key_names.h"

#include <gtest/gtest.h>

namespace {

std::string read(std::string_view text) {
    const auto script = app::parseScript(text);
    if (!script.problem.empty()) return "problem: " + script.problem;
    std::string result;
    for (const auto& line : script.lines) {
        result += std::to_string(line.number) + ':';
        for (const auto& word : line.words) result += '[' + word + ']';
    }
    return result;
}

TEST(TourScript, AStepALineWithItsNumber) {
    EXPECT_EQ("1:[tap][row][Pair]3:[picture][a b]", read("tap row Pair\n\npicture \"a b\""));
}

TEST(TourScript, CommentsAndBlanksCountForNothing) {
    EXPECT_EQ("2:[say][#1]", read("# nothing\n  say \"#1\"  # a comment\n \t \r\n"));
    EXPECT_EQ("", read(""));
    EXPECT_EQ("", read("\n\n#"));
}

TEST(TourScript, AnEmptyQuotationIsAWord) { EXPECT_EQ("1:[wait][row][]", read("wait row \"\"")); }

TEST(TourScript, AQuotationWithoutEndIsRefusedWithItsLine) {
    EXPECT_EQ("problem: line 2: a quotation has no end", read("say a\nsay \"b\nsay c"));
}

TEST(TourKeys, AreKnownByName) {
    EXPECT_EQ(4, app::keyNamed("a"));
    EXPECT_EQ(29, app::keyNamed("z"));
    EXPECT_EQ(30, app::keyNamed("1"));
    EXPECT_EQ(38, app::keyNamed("9"));
    EXPECT_EQ(39, app::keyNamed("0"));
    EXPECT_EQ(40, app::keyNamed("return"));
    EXPECT_EQ(228, app::keyNamed("rightcontrol"));
    EXPECT_EQ(0, app::keyNamed("A"));
    EXPECT_EQ(0, app::keyNamed(""));
    EXPECT_EQ(0, app::keyNamed("enter key"));
}

} // namespace
