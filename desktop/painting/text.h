#pragma once

// Text as labels show it: shaped once and kept, so that a repaint only draws. Main thread; on others it works, but
// keeps nothing. Without fonts, or without the toolkit running, text has a height and no width, and draws nothing.

#include "platform/quartz/CGContext.h"
#include "platform/uikit/NSAttributedString.h"

#include <span>
#include <string>
#include <vector>

namespace host {

struct TextRun {
    std::string text; // "\n" begins a new line
    std::shared_ptr<UIFont> font;
    CGColorRef color; // nil draws nothing
};

enum class TextAlignment { Left, Center, Right };

struct TextSize {
    CGSize size;              // edges on device pixels of the main screen
    double firstBaseline = 0; // from the top
};

std::vector<TextRun> textRuns(std::string text, std::shared_ptr<UIFont> font, CGColorRef color);
// What the text leaves open comes from the arguments.
std::vector<TextRun> textRuns(const NSAttributedString& text, const std::shared_ptr<UIFont>& font,
                              const CGColorRef& color);

// Wraps at words (and inside one that is too long) at `maxWidth` points, into at most `lines` lines (0: as many as it
// takes); text beyond the last line is cut with an ellipsis. Empty text has no size.
TextSize measureText(std::span<const TextRun> runs, double maxWidth, int lines);

// Laid out in the same way at the rectangle's width, as a block in the middle of its height, baselines on device
// pixels.
void drawText(CGContextRef context, std::span<const TextRun> runs, CGRect rect, TextAlignment alignment, int lines);

} // namespace host
