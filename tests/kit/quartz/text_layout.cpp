#include "desktop/painting/TextLayout.h"

#include "desktop/painting/text_cache.h"
#include "kit/quartz/text_runs.h"
#include "tests/kit/quartz/Surface.h"

#include <gtest/gtest.h>

#include <QGlyphRun>
#include <QRawFont>

#include <algorithm>

namespace {

std::vector<seat::TextRun> runsOf(const std::string& text, double size = 17) {
    return seat::textRuns(text, UIFont::systemFontOfSize(size), test::rgb(0, 0, 0));
}
std::shared_ptr<const seat::TextLayout> laidOut(const std::string& text, double width, int lines) {
    return seat::textLayout(runsOf(text), width, lines, 1);
}
std::size_t glyphCount(const seat::TextLayout::Line& line) {
    std::size_t count = 0;
    for (const auto& piece : line.pieces) count += static_cast<std::size_t>(piece.glyphs.glyphIndexes().size());
    return count;
}

TEST(TextLayout, EveryKeySymbolHasAGlyph) {
    for (const char* symbol : {"⇧", "⌥", "⌘", "⏎", "⌫", "⌦", "⇪", "⇆", "⎋", "→", "←", "↓", "↑", "⇥", "⌃",
                               "↵", "⇞", "⇟", "↖", "↘", "␣", "…", "–", "✓", "›", "‹", "ä", "ß", "€"}) {
        const auto layout = laidOut(symbol, 1000, 1);
        ASSERT_EQ(layout->lines.size(), 1U) << symbol;
        for (const auto& piece : layout->lines[0].pieces)
            for (const auto glyph : piece.glyphs.glyphIndexes()) EXPECT_NE(glyph, 0U) << symbol;
        EXPECT_GT(layout->width, 1) << symbol;
    }
}

TEST(TextLayout, PairsAreKerned) { EXPECT_LT(laidOut("AVAVAV", 1000, 1)->width, laidOut("AAAVVV", 1000, 1)->width); }

TEST(TextLayout, WrapsAtWordsWithinTheWidth) {
    const auto layout = laidOut("one two three four five six seven", 100, 0);
    EXPECT_GT(layout->lines.size(), 2U);
    EXPECT_LE(layout->width, 100.1);
    const auto line = layout->lines[1].baseline - layout->lines[0].baseline;
    EXPECT_EQ(layout->height, line * static_cast<double>(layout->lines.size()));
    EXPECT_EQ(line, static_cast<int>(line));
}

TEST(TextLayout, WordLongerThanTheLineIsBrokenInside) {
    const auto layout = laidOut("Donaudampfschifffahrtsgesellschaft", 80, 0);
    EXPECT_GT(layout->lines.size(), 2U);
    EXPECT_LE(layout->width, 80.1);
}

TEST(TextLayout, NewlineBeginsALineAndAnEmptyLineHasItsHeight) {
    const auto layout = laidOut("a\n\nb\n", 1000, 0);
    ASSERT_GE(layout->lines.size(), 3U);
    EXPECT_EQ(glyphCount(layout->lines[0]), 1U);
    EXPECT_EQ(glyphCount(layout->lines[1]), 0U);
    EXPECT_EQ(glyphCount(layout->lines[2]), 1U);
    EXPECT_EQ(layout->lines[2].baseline - layout->lines[1].baseline,
              layout->lines[1].baseline - layout->lines[0].baseline);
}

TEST(TextLayout, SingleLineThatIsTooLongEndsInAnEllipsis) {
    const auto layout = laidOut("Controller connected by hand", 120, 1);
    ASSERT_EQ(layout->lines.size(), 1U);
    EXPECT_LE(layout->width, 120.1);
    EXPECT_GT(layout->width, 90);
    const auto ellipsis = laidOut("…", 1000, 1)->lines[0].pieces[0].glyphs.glyphIndexes();
    EXPECT_EQ(layout->lines[0].pieces.back().glyphs.glyphIndexes().back(), ellipsis.back());
}

TEST(TextLayout, NothingIsCutThatFits) {
    const double width = laidOut("Exactly", 1000, 1)->width;
    EXPECT_EQ(glyphCount(laidOut("Exactly", width, 1)->lines[0]), 7U);
    EXPECT_LT(laidOut("Exactly", width - 1, 1)->width, width);
}

TEST(TextLayout, EllipsisFollowsALetterNotABlank) {
    const double width = laidOut("one …", 1000, 1)->width;
    const auto layout = laidOut("one two three", width, 1);
    EXPECT_EQ(glyphCount(layout->lines[0]), 4U);
}

TEST(TextLayout, LinesBeyondTheMostAreCutIntoTheLast) {
    const auto layout = laidOut("one two three four five six seven eight nine ten", 100, 2);
    ASSERT_EQ(layout->lines.size(), 2U);
    EXPECT_LE(layout->width, 100.1);
    const auto ellipsis = laidOut("…", 1000, 1)->lines[0].pieces[0].glyphs.glyphIndexes();
    EXPECT_EQ(layout->lines[1].pieces.back().glyphs.glyphIndexes().back(), ellipsis.back());
}

TEST(TextLayout, SecondParagraphIsCutFromASingleLine) {
    const auto layout = laidOut("alpha\nbeta", 1000, 1);
    ASSERT_EQ(layout->lines.size(), 1U);
    EXPECT_EQ(glyphCount(layout->lines[0]), 6U);
}

TEST(TextLayout, WidthOfNothingStillGivesLinesWithoutHanging) {
    for (const double width : {0.0, -10.0, 0.5}) {
        EXPECT_GE(laidOut("several words here", width, 0)->lines.size(), 1U);
        EXPECT_EQ(laidOut("several words here", width, 1)->lines.size(), 1U);
    }
}

TEST(TextLayout, BytesThatAreNoTextAreShownAsSomething) {
    EXPECT_GT(laidOut("\xff\xfe broken \xc3", 1000, 1)->width, 1);
    EXPECT_EQ(laidOut(std::string("a\0b", 3), 1000, 1)->lines.size(), 1U);
}

TEST(TextLayout, RepeatedRequestComesFromMemory) {
    const auto first = laidOut("remembered", 1000, 1);
    EXPECT_EQ(laidOut("remembered", 1000, 1), first);
    EXPECT_EQ(laidOut("remembered", 500, 1), first); // it fits: the same at every width
    EXPECT_NE(seat::textLayout(runsOf("remembered", 15), 1000, 1, 1), first);
    EXPECT_NE(seat::textLayout(runsOf("remembered"), 1000, 1, 2), first);
}

TEST(TextLayout, MemoryIsBounded) {
    const auto kept = laidOut("kept by use", 1000, 1);
    for (std::size_t i = 0; i < seat::mostCachedTextLayouts + 50; ++i) {
        (void)laidOut("text " + std::to_string(i), 1000, 1);
        (void)laidOut("kept by use", 1000, 1);
    }
    EXPECT_EQ(seat::cachedTextLayoutCount(), seat::mostCachedTextLayouts);
    EXPECT_EQ(laidOut("kept by use", 1000, 1), kept);
}

} // namespace
