// Text as a table of widths has it, every character a box: as wide as the table says, as high as an x or, for capitals,
// digits and letters with a stem, as high as those.

#include "kit/quartz/Canvas.h"
#include "kit/quartz/context.h"
#include "kit/quartz/drawing.h"
#include "kit/quartz/snapping.h"
#include "kit/seat.h"
#include "platform/uikit/UIScreen.h"

#include <algorithm>
#include <cmath>
#include <string_view>

namespace seat {

namespace {

constexpr double ascentOfOne = 0.93;
constexpr double descentOfOne = 0.24;
constexpr double xHeight = 0.52;
constexpr double capHeight = 0.72;

struct Character {
    std::size_t run = 0;
    char32_t code = 0;
    double width = 0; // points
};

double widthOfOne(char32_t code) {
    constexpr std::u32string_view narrow = U"fijlrtI.,:;'!|()[]/ ";
    constexpr std::u32string_view wide = U"mwMW@%";
    if (narrow.find(code) != std::u32string_view::npos) return 0.3;
    if (wide.find(code) != std::u32string_view::npos) return 0.85;
    return code >= U'A' && code <= U'Z' ? 0.68 : 0.56;
}

bool isTall(char32_t code) {
    constexpr std::u32string_view low = U"acemnorsuvwxzgpqy.,:;";
    return low.find(code) == std::u32string_view::npos;
}

double sizeOf(const TextRun& run) { return run.font ? run.font->pointSize() : 17; }

// The characters of the runs; what is no UTF-8 stands as one character a byte.
std::vector<Character> charactersOf(std::span<const TextRun> runs) {
    std::vector<Character> result;
    for (std::size_t r = 0; r < runs.size(); ++r) {
        const std::string& text = runs[r].text;
        for (std::size_t i = 0; i < text.size();) {
            const auto lead = static_cast<unsigned char>(text[i]);
            const std::size_t length = lead < 0x80 ? 1 : lead >= 0xf0 ? 4 : lead >= 0xe0 ? 3 : lead >= 0xc0 ? 2 : 1;
            char32_t code = lead < 0x80 || length == 1 ? lead : lead & (0xffU >> (length + 1));
            for (std::size_t k = 1; k < length && i + k < text.size(); ++k)
                code = code << 6 | (static_cast<unsigned char>(text[i + k]) & 0x3fU);
            i += length;
            const double bold = runs[r].font && runs[r].font->isBold() ? 1.06 : 1;
            result.push_back({r, code, widthOfOne(code) * sizeOf(runs[r]) * bold});
        }
    }
    return result;
}

struct Line {
    std::vector<Character> characters;
    double width = 0;

    void add(const Character& character) {
        characters.push_back(character);
        width += character.width;
    }
};

// Spaces at a line's end have no width.
void trim(Line& line) {
    while (!line.characters.empty() && line.characters.back().code == U' ') {
        line.width -= line.characters.back().width;
        line.characters.pop_back();
    }
}

std::vector<Line> linesOf(std::span<const TextRun> runs, double maxWidth, int most) {
    constexpr double allowance = 1e-6;
    std::vector<Line> lines(1);
    const auto characters = charactersOf(runs);
    for (std::size_t i = 0; i < characters.size();) {
        if (characters[i].code == U'\n') {
            lines.emplace_back();
            ++i;
            continue;
        }
        // A word with the spaces before it.
        std::size_t end = i;
        Line word;
        while (end < characters.size() && characters[end].code == U' ') word.add(characters[end++]);
        while (end < characters.size() && characters[end].code != U' ' && characters[end].code != U'\n')
            word.add(characters[end++]);
        const bool fits = lines.back().width + word.width <= maxWidth + allowance;
        if (!fits && !lines.back().characters.empty()) {
            lines.emplace_back();
            word = {};
            std::size_t first = i;
            while (first < end && characters[first].code == U' ') ++first;
            for (std::size_t k = first; k < end; ++k) word.add(characters[k]);
        }
        for (const Character& character : word.characters) {
            if (lines.back().width + character.width > maxWidth + allowance && !lines.back().characters.empty())
                lines.emplace_back();
            lines.back().add(character);
        }
        i = end;
    }
    const bool isCut = most > 0 && lines.size() > static_cast<std::size_t>(most);
    if (isCut) lines.resize(static_cast<std::size_t>(most));
    for (Line& line : lines) trim(line);
    if (isCut) {
        Line& last = lines.back();
        const std::size_t run = last.characters.empty() ? 0 : last.characters.back().run;
        const Character dots{run, U'…', widthOfOne(U'…') * sizeOf(runs[run])};
        while (!last.characters.empty() && last.width + dots.width > maxWidth + allowance) {
            last.width -= last.characters.back().width;
            last.characters.pop_back();
        }
        last.add(dots);
    }
    return lines;
}

double tallest(std::span<const TextRun> runs, const Line& line) {
    double size = line.characters.empty() ? sizeOf(runs.front()) : 0;
    for (const Character& character : line.characters) size = std::max(size, sizeOf(runs[character.run]));
    return size;
}

// Whole pixels of the screen.
double rounded(double points, double scale) { return std::ceil(points * scale - 1e-6) / scale; }
double ascent(double size, double scale) { return rounded(size * ascentOfOne, scale); }
double height(double size, double scale) { return ascent(size, scale) + rounded(size * descentOfOne, scale); }

bool isEmpty(std::span<const TextRun> runs) {
    return std::all_of(runs.begin(), runs.end(), [](const TextRun& run) { return run.text.empty(); });
}

} // namespace

FontMetrics metricsOfSystemFont(bool) { return {ascentOfOne, descentOfOne}; }

TextSize measureText(std::span<const TextRun> runs, double maxWidth, int lines) {
    if (isEmpty(runs)) return {};
    const double scale = UIScreen::mainScreen()->scale();
    TextSize result;
    const auto laid = linesOf(runs, maxWidth, lines);
    for (const Line& line : laid) {
        result.size.width = std::max(result.size.width, rounded(line.width, scale));
        result.size.height += height(tallest(runs, line), scale);
    }
    result.firstBaseline = ascent(tallest(runs, laid.front()), scale);
    return result;
}

void drawText(CGContextRef context, std::span<const TextRun> runs, CGRect rect, TextAlignment alignment, int lines) {
    if (!context || isEmpty(runs) || CGRectIsEmpty(rect)) return;
    const auto& t = context->state().toPixels;
    const bool isEven = t.b == 0 && t.c == 0 && t.a == t.d && t.a > 0;
    const double scale = isEven ? t.a : UIScreen::mainScreen()->scale();
    const auto laid = linesOf(runs, rect.size.width, lines);
    double whole = 0;
    for (const Line& line : laid) whole += height(tallest(runs, line), scale);
    const auto snapped = [&](double y) { return isEven ? (nearestPixelEdge(y * scale + t.ty) - t.ty) / scale : y; };
    double top = rect.origin.y + (rect.size.height - whole) / 2;
    for (const Line& line : laid) {
        const double share = alignment == TextAlignment::Left ? 0 : alignment == TextAlignment::Center ? 0.5 : 1;
        double x = rect.origin.x + (rect.size.width - line.width) * share;
        const double size = tallest(runs, line);
        const double baseline = snapped(top + ascent(size, scale));
        for (const Character& character : line.characters) {
            const TextRun& run = runs[character.run];
            if (character.code != U' ' && run.color) {
                const double high = sizeOf(run) * (isTall(character.code) ? capHeight : xHeight);
                const double gap = 0.15 * character.width;
                CGContextSaveGState(context);
                CGContextSetFillColorWithColor(context, run.color);
                CGContextFillRect(context, {{x + gap / 2, baseline - high}, {character.width - gap, high}});
                CGContextRestoreGState(context);
            }
            x += character.width;
        }
        top += height(size, scale);
    }
}

} // namespace seat
