#include "kit/quartz/drawing.h"
#include "kit/quartz/text_runs.h"
#include "kit/seat.h"

#include "desktop/painting/TextLayout.h"
#include "desktop/painting/text_cache.h"
#include "tests/kit/quartz/Surface.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>

namespace {

using seat::TextAlignment;

std::vector<seat::TextRun> runs(const std::string& text, double size = 17) {
    return seat::textRuns(text, UIFont::systemFontOfSize(size), test::rgb(0, 0, 0));
}

struct Ink {
    int left = 1 << 20, top = 1 << 20, right = -1, bottom = -1;
    bool isEmpty() const { return right < 0; }
};

// Where the image of that size, in points, is not transparent.
Ink inkOf(CGSize size, double scale, const std::function<void(CGContextRef)>& draw) {
    UIGraphicsBeginImageContextWithOptions(size, /*opaque*/ false, scale);
    draw(UIGraphicsGetCurrentContext());
    const auto image = UIGraphicsGetImageFromCurrentImageContext()->CGImage();
    UIGraphicsEndImageContext();
    Ink ink;
    for (std::size_t i = 0; i < image->pixels.size(); ++i) {
        if (test::alphaOf(image->pixels[i]) < 64) continue;
        const int x = static_cast<int>(i % image->width), y = static_cast<int>(i / image->width);
        ink = {std::min(ink.left, x), std::min(ink.top, y), std::max(ink.right, x), std::max(ink.bottom, y)};
    }
    return ink;
}
Ink inkOf(const std::vector<seat::TextRun>& text, CGSize size, TextAlignment alignment = TextAlignment::Left,
          int lines = 1, double scale = 1) {
    return inkOf(size, scale, [&](CGContextRef context) {
        seat::drawText(context, text, {{0, 0}, size}, alignment, lines);
    });
}

TEST(Text, EmptyTextHasNoSizeAndDrawsNothing) {
    EXPECT_EQ(seat::measureText(runs(""), 100, 1).size.height, 0);
    EXPECT_EQ(seat::measureText({}, 100, 1).size.width, 0);
    EXPECT_TRUE(inkOf(runs(""), {50, 20}).isEmpty());
}

TEST(Text, SizeIsOnWholePixelsAndHoldsTheInk) {
    for (const double scale : {1.0, 1.5, 2.0, 3.0}) {
        const test::ScreenScale screen(scale);
        const auto size = seat::measureText(runs("Controller Type gjpqy"), 1000, 1).size;
        EXPECT_NEAR(size.width * scale, std::round(size.width * scale), 1e-9);
        EXPECT_NEAR(size.height * scale, std::round(size.height * scale), 1e-9);
        const auto ink =
            inkOf(runs("Controller Type gjpqy"), {size.width + 20, size.height}, TextAlignment::Left, 1, scale);
        EXPECT_LE(ink.right, size.width * scale);
        EXPECT_GT(ink.right, size.width * scale * 0.9);
        EXPECT_GT(ink.top, 0);
        EXPECT_LT(ink.bottom, size.height * scale);
    }
}

TEST(Text, WidthsAtDifferentScalesAgree) {
    double width = 0;
    for (const double scale : {1.0, 1.25, 1.5, 2.0, 3.0}) {
        const test::ScreenScale screen(scale);
        const double here = seat::measureText(runs("The quick brown fox jumps over the lazy dog"), 1000, 1).size.width;
        if (width == 0) width = here;
        EXPECT_NEAR(here, width, width * 0.03) << scale; // letters are a whole number of pixels high
    }
}

TEST(Text, DrawnAtItsMeasuredWidthIsNotCut) {
    for (const double scale : {1.0, 1.25, 1.5, 2.0, 3.0}) {
        const test::ScreenScale screen(scale);
        for (const char* text : {"Connect", "AVAWATo", "Force extended profile", "#004efd", "100%"}) {
            const auto text17 = runs(text);
            const double width = seat::measureText(text17, 1000, 1).size.width;
            const auto layout = seat::textLayout(text17, width * scale, 1, scale);
            const auto natural = seat::textLayout(text17, 1e6, 1, scale);
            EXPECT_EQ(layout, natural) << text << ' ' << scale;
        }
    }
}

TEST(Text, AlignmentMovesItToTheSides) {
    const auto text = runs("abc");
    const auto left = inkOf(text, {200, 30});
    const auto center = inkOf(text, {200, 30}, TextAlignment::Center);
    const auto right = inkOf(text, {200, 30}, TextAlignment::Right);
    EXPECT_LT(left.left, 4);
    EXPECT_NEAR(center.left + center.right, 200, 4);
    EXPECT_GT(right.right, 195);
    EXPECT_EQ(right.right - right.left, left.right - left.left);
}

TEST(Text, StandsInTheMiddleOfTheHeight) {
    const auto low = inkOf(runs("xxx"), {60, 20});
    const auto high = inkOf(runs("xxx"), {60, 40});
    EXPECT_EQ(high.top, low.top + 10);
}

TEST(Text, BaselinesAreOnPixelsWhereverTheTextStands) {
    for (const double scale : {1.0, 1.25, 1.5, 2.0}) {
        const test::ScreenScale screen(scale);
        std::vector<int> heights;
        for (int step = 0; step < 12; ++step) {
            const double y = step * 0.31;
            const auto ink = inkOf({60, 40}, scale, [&](CGContextRef context) {
                seat::drawText(context, runs("HHH"), {{3, y}, {60, 30}}, TextAlignment::Left, 1);
            });
            heights.push_back(ink.bottom - ink.top);
        }
        EXPECT_EQ(std::count(heights.begin(), heights.end(), heights[0]), 12) << scale;
    }
}

TEST(Text, RunsOfDifferentSizesShareOneBaseline) {
    const auto text = NSAttributedString::alloc()->initWithString_attributes(
        "H", {UIFont::systemFontOfSize(24), UIColor::redColor()});
    text->appendAttributedString(*NSAttributedString::alloc()->initWithString_attributes(
        "H", {UIFont::systemFontOfSize(12), UIColor::blueColor()}));
    const auto both = seat::textRuns(*text, nullptr, nullptr);
    ASSERT_EQ(both.size(), 2U);
    UIGraphicsBeginImageContextWithOptions({60, 40}, /*opaque*/ true, 1);
    seat::drawText(UIGraphicsGetCurrentContext(), both, {{0, 0}, {60, 40}}, TextAlignment::Left, 1);
    const auto image = UIGraphicsGetImageFromCurrentImageContext()->CGImage();
    UIGraphicsEndImageContext();
    int redBottom = -1, blueBottom = -1, redTop = 99, blueTop = 99;
    for (int y = 0; y < 40; ++y)
        for (int x = 0; x < 60; ++x) {
            const auto pixel = image->pixels[static_cast<std::size_t>(y) * 60 + static_cast<std::size_t>(x)];
            if (test::redOf(pixel) > 128) redBottom = y, redTop = std::min(redTop, y);
            if (test::blueOf(pixel) > 128) blueBottom = y, blueTop = std::min(blueTop, y);
        }
    EXPECT_GT(redBottom, 0);
    EXPECT_EQ(redBottom, blueBottom);
    EXPECT_LT(redTop, blueTop);
}

TEST(Text, AttributesThatAreLeftOpenComeFromTheLabel) {
    const auto text = NSAttributedString::alloc()->initWithString_attributes("a", {});
    const auto color = test::rgb(0, 1, 0);
    const auto result = seat::textRuns(*text, UIFont::systemFontOfSize(9), color);
    EXPECT_EQ(result[0].font->pointSize(), 9);
    EXPECT_EQ(result[0].color, color);
    EXPECT_EQ(seat::textRuns("a", nullptr, nullptr)[0].font->pointSize(), 17);
}

TEST(Text, WithoutColourDrawsNothing) {
    EXPECT_TRUE(inkOf(seat::textRuns("abc", nullptr, nullptr), {60, 20}).isEmpty());
    const auto pattern = UIColor::patternColor()->CGColor();
    EXPECT_TRUE(inkOf(seat::textRuns("abc", nullptr, pattern), {60, 20}).isEmpty());
}

TEST(Text, GrowsWithItsTransformWithoutBeingShapedAnew) {
    const auto text = runs("H");
    (void)inkOf(text, {60, 40});
    const std::size_t before = seat::cachedTextLayoutCount();
    Ink last{};
    for (const double growth : {1.0, 1.1, 1.35, 1.6}) {
        const auto ink = inkOf({60, 60}, 1, [&](CGContextRef context) {
            CGContextScaleCTM(context, growth, growth);
            seat::drawText(context, text, {{0, 0}, {30, 30}}, TextAlignment::Left, 1);
        });
        EXPECT_GE(ink.bottom - ink.top, last.bottom - last.top) << growth;
        last = ink;
    }
    EXPECT_GT(last.bottom - last.top, 17);
    EXPECT_EQ(seat::cachedTextLayoutCount(), before);
}

TEST(Text, NilContextAndEmptyPlaceAreHarmless) {
    seat::drawText(nullptr, runs("a"), {{0, 0}, {10, 10}}, TextAlignment::Left, 1);
    EXPECT_TRUE(inkOf({20, 20}, 1, [](CGContextRef context) {
                    seat::drawText(context, runs("a"), {{0, 0}, {-10, 10}}, TextAlignment::Left, 1);
                }).isEmpty());
}

TEST(Font, EqualRequestsShareOneObject) {
    const auto font = UIFont::systemFontOfSize(14);
    EXPECT_EQ(UIFont::systemFontOfSize(14), font);
    EXPECT_NE(UIFont::boldSystemFontOfSize(14), font);
    EXPECT_TRUE(UIFont::boldSystemFontOfSize(14)->isBold());
}

TEST(Font, MetricsGrowWithTheSize) {
    const auto font = UIFont::systemFontOfSize(10);
    EXPECT_GT(font->ascender(), 7);
    EXPECT_LT(font->ascender(), 12);
    EXPECT_LT(font->descender(), -1);
    EXPECT_NEAR(font->lineHeight(), font->ascender() - font->descender(), 1e-12);
    EXPECT_NEAR(UIFont::systemFontOfSize(20)->lineHeight(), 2 * font->lineHeight(), 1e-9);
}

TEST(Font, SizeThatIsNoneCountsAsTheUsualOne) {
    EXPECT_EQ(UIFont::systemFontOfSize(std::nan(""))->pointSize(), 17);
    EXPECT_EQ(UIFont::systemFontOfSize(-3)->pointSize(), 17);
    EXPECT_LE(UIFont::systemFontOfSize(1e300)->pointSize(), 1024);
}

TEST(AttributedString, AppendsRunsAlsoOfItself) {
    const auto text = NSAttributedString::alloc()->initWithString_attributes("ab", {});
    text->appendAttributedString(*text);
    EXPECT_EQ(text->string(), "abab");
    EXPECT_EQ(text->runs().size(), 2U);
    EXPECT_TRUE(NSAttributedString::alloc()->initWithString_attributes("", {})->runs().empty());
}

} // namespace
