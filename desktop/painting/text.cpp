// Text as labels show it: shaped once and kept, so that a repaint only draws.

#include "kit/seat.h"

#include "desktop/painting/TextLayout.h"
#include "desktop/painting/ToolkitPainter.h"
#include "desktop/painting/painting.h"
#include "kit/quartz/context.h"
#include "kit/quartz/geometry.h"
#include "kit/quartz/snapping.h"
#include "platform/uikit/UIScreen.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace seat {

namespace {

bool isEmpty(std::span<const TextRun> runs) {
    return std::all_of(runs.begin(), runs.end(), [](const TextRun& run) { return run.text.empty(); });
}

// The scale to shape at: the context's where it is lasting, the screen's while something grows or turns.
double shapingScale(const CGAffineTransform& t) {
    const double screen = UIScreen::mainScreen()->scale();
    const bool isEven = t.b == 0 && t.c == 0 && t.a == t.d && t.a > 0;
    return isEven && (t.a == std::round(t.a) || std::abs(t.a - screen) <= 1e-9) ? t.a : screen;
}

} // namespace

TextSize measureText(std::span<const TextRun> runs, double maxWidth, int lines) {
    if (isEmpty(runs)) return {};
    const double scale = UIScreen::mainScreen()->scale();
    const auto layout = textLayout(runs, maxWidth * scale, lines, scale);
    TextSize result;
    result.size = {pixelEdgeAbove(layout->width) / scale, layout->height / scale};
    if (!layout->lines.empty()) result.firstBaseline = layout->lines.front().baseline / scale;
    return result;
}

void drawText(CGContextRef context, std::span<const TextRun> runs, CGRect rect, TextAlignment alignment, int lines) {
    if (!context || isEmpty(runs) || CGRectIsEmpty(rect)) return;
    const auto& state = context->state();
    if (!isFinite(state.toPixels)) return;
    const double scale = shapingScale(state.toPixels);
    const CGAffineTransform toPixels =
        CGAffineTransformConcat(CGAffineTransformMakeScale(1 / scale, 1 / scale), state.toPixels);
    const auto& t = state.toPixels;
    const bool pixelForPixel = t.b == 0 && t.c == 0 && std::abs(t.a - scale) <= 1e-9 && std::abs(t.d - scale) <= 1e-9;
    const auto layout = textLayout(runs, rect.size.width * scale, lines, scale);
    if (layout->lines.empty()) return;
    auto* const seatPainter = static_cast<ToolkitPainter*>(context->canvas().painter()); // there is no other kind
    if (!seatPainter) return;
    QPainter* const painter = &seatPainter->toolkit();

    const auto snapped = [pixelForPixel](double edge) { return pixelForPixel ? nearestPixelEdge(edge) : edge; };
    const double originX = pixelForPixel ? toPixels.tx : 0;
    const double originY = pixelForPixel ? toPixels.ty : 0;
    const double top = snapped(originY + rect.origin.y * scale + (rect.size.height * scale - layout->height) / 2);
    if (!pixelForPixel) painter->setTransform(toolkitTransform(toPixels));
    for (const auto& line : layout->lines) {
        const double slack = rect.size.width * scale - line.width;
        const double share = alignment == TextAlignment::Left ? 0 : alignment == TextAlignment::Center ? 0.5 : 1;
        const double left = snapped(originX + rect.origin.x * scale + slack * share);
        for (const auto& piece : line.pieces) {
            const CGColorRef& color = runs[piece.run].color;
            const auto ink = color ? toolkitColor(*color, state.alpha) : std::nullopt;
            if (!ink) continue;
            painter->setPen(*ink);
            painter->drawGlyphRun(QPointF(left, top + line.baseline), piece.glyphs);
        }
    }
    painter->setPen(Qt::NoPen);
    if (!pixelForPixel) painter->resetTransform();
}

} // namespace seat
