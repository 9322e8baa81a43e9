#include "desktop/mail/html_blocks.h"

#include <gtest/gtest.h>

namespace {

// "# heading", "## subheading", "text", "1. item", links in brackets, a line each.
std::string shown(std::string_view html) {
    std::string lines;
    for (const auto& block : seat::htmlBlocks(html)) {
        using Kind = seat::HTMLBlock::Kind;
        if (!lines.empty()) lines += "\n";
        lines += block.kind == Kind::Heading ? "# " : block.kind == Kind::Subheading ? "## " : "";
        if (!block.marker.empty()) lines += block.marker + " ";
        for (const auto& run : block.runs) lines += !run.address.empty() ? "[" + run.text + "]" : run.text;
    }
    return lines;
}

TEST(HTMLBlocks, HeadingsParagraphsAndListsAreBlocks) {
    EXPECT_EQ(shown("<h1>A</h1>note<h2>B</h2><p>c</p><ol><li>one</li><li>two</li></ol><ul><li>x</li></ul>"),
              "# A\nnote\n## B\nc\n1. one\n2. two\n• x");
}

TEST(HTMLBlocks, EachNumberedListBeginsAtOne) {
    EXPECT_EQ(shown("<ol><li>a</li><li>b</li></ol><h2>H</h2><ol><li>c</li></ol>"), "1. a\n2. b\n## H\n1. c");
}

TEST(HTMLBlocks, LinksAreRunsOfTheirOwn) {
    EXPECT_EQ(shown("<li>Get <a href=http://a.example/b>this</a>.</li>"), "• Get [this].");
}

TEST(HTMLBlocks, LinksKnowWhereTheyLead) {
    const auto target = [](std::string_view html) {
        const auto blocks = seat::htmlBlocks(html);
        return blocks.empty() ? "no text" : blocks[0].runs[0].address;
    };

    EXPECT_EQ(target("<a href=http://a.example/b>x</a>"), "http://a.example/b");
    EXPECT_EQ(target("<a class=c href=\"http://a.example/b c\" id=d>x</a>"), "http://a.example/b c");
    EXPECT_EQ(target("<a href='http://a.example/'>x</a>"), "http://a.example/");
    EXPECT_EQ(target("<a href=http://a.example/?b&#61;c&amp;d&#61;e>x</a>"), "http://a.example/?b=c&d=e");
    EXPECT_EQ(target("<a name=here>x</a>"), "");
    EXPECT_EQ(target("<a data-href=http://a.example/>x</a>"), "");
}

TEST(HTMLBlocks, WhiteSpaceIsFoldedAndGoesAtTheEdges) {
    EXPECT_EQ(shown(" <p>  a \n\t b  </p> \n "), "a b");
    EXPECT_EQ(shown("a <b>b</b> c"), "a b c");
}

TEST(HTMLBlocks, BareSignsAreText) {
    EXPECT_EQ(shown("Settings > General > About"), "Settings > General > About");
    EXPECT_EQ(shown("1 < 2 & 3"), "1 < 2 & 3");
}

TEST(HTMLBlocks, ReferencesBecomeTheirCharacters) {
    EXPECT_EQ(shown("&lt;&gt;&amp;&quot;&apos;&#65;&#x42;&#8230;"), "<>&\"'AB…");
    EXPECT_EQ(shown("&unknown; &#; &#x; &#12"), "&unknown; &#; &#x; &#12");
    EXPECT_EQ(shown("&#xD800;&#1114112;"), "\uFFFD\uFFFD");
}

TEST(HTMLBlocks, NamesOfElementsHaveNoCase) { EXPECT_EQ(shown("<H1>a</H1><P>b<BR>c</P>"), "# a\nb\nc"); }

TEST(HTMLBlocks, UnknownElementsLeaveTheirText) { EXPECT_EQ(shown("<p>a <em>b</em> <!-- note -->c</p>"), "a b c"); }

TEST(HTMLBlocks, CutOffMarkupEndsTheText) {
    EXPECT_EQ(shown("a<b"), "a");
    EXPECT_EQ(shown("a<"), "a<");
    EXPECT_EQ(shown("<p>a&"), "a&");
    EXPECT_EQ(shown(""), "");
}

TEST(HTMLBlocks, TextOfABlockIsThatOfAllItsRuns) {
    const auto blocks = seat::htmlBlocks("<li>Get <a href=x>this</a>.</li>");
    ASSERT_EQ(blocks.size(), 1u);
    EXPECT_EQ(blocks[0].text(), "Get this.");
}

} // namespace
