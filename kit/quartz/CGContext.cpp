#include "kit/quartz/PathCoverage.h"
#include "kit/quartz/context.h"
#include "kit/quartz/drawing.h"
#include "kit/quartz/geometry.h"
#include "kit/quartz/snapping.h"

#include <cmath>

namespace {

const CGColorRef& opaqueBlack() {
    static const auto* const black = new CGColorRef(std::make_shared<struct CGColor>());
    return *black;
}

bool isUpright(const CGAffineTransform& t) { return t.b == 0 && t.c == 0; }

bool isNumber(CGRect rect) { return std::isfinite(rect.origin.x + rect.origin.y + rect.size.width + rect.size.height); }

bool isFinite(const CGAffineTransform& t) { return std::isfinite(t.a + t.b + t.c + t.d + t.tx + t.ty); }

seat::Outline cornersOf(CGRect rect) {
    const double left = CGRectGetMinX(rect), top = CGRectGetMinY(rect);
    const double right = CGRectGetMaxX(rect), bottom = CGRectGetMaxY(rect);
    return {{left, top}, {right, top}, {right, bottom}, {left, bottom}};
}

} // namespace

CGContext::CGContext(seat::Canvas& canvas, const CGAffineTransform& toPixels)
    : m_canvas(canvas),
      m_outerClip(canvas.clip()), m_state{toPixels, canvas.clip(), opaqueBlack(), opaqueBlack(), 1, 1} {}

CGContext::~CGContext() { m_canvas.setClip(m_outerClip); }

void CGContext::restore() {
    if (m_saved.empty()) return;
    m_state = std::move(m_saved.back());
    m_saved.pop_back();
    m_canvas.setClip(m_state.clip);
}

void CGContext::clipTo(CGRect rect) {
    auto& [bounds, shape] = m_state.clip;
    const CGRect extent = CGRectApplyAffineTransform(rect, m_state.toPixels);
    if (CGRectIsEmpty(extent) || !isNumber(extent)) {
        bounds = {};
    } else {
        // Cut in floating point first: an edge far away does not fit a whole number.
        const auto edge = [](double value) {
            return static_cast<int>(seat::nearestPixelEdge(std::clamp(value, -1e6, 1e6)));
        };
        bounds = bounds.intersected({edge(CGRectGetMinX(extent)), edge(CGRectGetMinY(extent)),
                                     edge(CGRectGetMaxX(extent)), edge(CGRectGetMaxY(extent))});
        if (!isUpright(m_state.toPixels)) {
            const auto corners = seat::transformed(cornersOf(rect), m_state.toPixels);
            shape = std::make_shared<const seat::ClipShape>(seat::ClipShape{seat::pathOf(corners), shape});
        }
    }
    m_canvas.setClip(m_state.clip);
}

void CGContextSaveGState(CGContextRef context) {
    if (context) context->save();
}
void CGContextRestoreGState(CGContextRef context) {
    if (context) context->restore();
}
void CGContextConcatCTM(CGContextRef context, CGAffineTransform transform) {
    if (context) context->state().toPixels = CGAffineTransformConcat(transform, context->state().toPixels);
}
void CGContextTranslateCTM(CGContextRef context, double tx, double ty) {
    CGContextConcatCTM(context, CGAffineTransformMakeTranslation(tx, ty));
}
void CGContextScaleCTM(CGContextRef context, double sx, double sy) {
    CGContextConcatCTM(context, CGAffineTransformMakeScale(sx, sy));
}
void CGContextClipToRect(CGContextRef context, CGRect rect) {
    if (context) context->clipTo(rect);
}
void CGContextSetAlpha(CGContextRef context, double alpha) {
    if (context) context->state().alpha = alpha;
}
void CGContextSetFillColorWithColor(CGContextRef context, const CGColorRef& color) {
    if (context) context->state().fillColor = color;
}
void CGContextSetRGBFillColor(CGContextRef context, double red, double green, double blue, double alpha) {
    if (context) context->state().fillColor = std::make_shared<struct CGColor>(red, green, blue, alpha);
}
void CGContextSetGrayFillColor(CGContextRef context, double gray, double alpha) {
    CGContextSetRGBFillColor(context, gray, gray, gray, alpha);
}
void CGContextSetStrokeColorWithColor(CGContextRef context, const CGColorRef& color) {
    if (context) context->state().strokeColor = color;
}
void CGContextSetLineWidth(CGContextRef context, double width) {
    if (context) context->state().lineWidth = width;
}

void CGContextFillRect(CGContextRef context, CGRect rect) {
    if (!context || CGRectIsEmpty(rect)) return;
    const auto& state = context->state();
    if (!state.fillColor) return;
    if (isUpright(state.toPixels)) {
        const CGRect pixels = CGRectApplyAffineTransform(rect, state.toPixels);
        context->canvas().fillRect(CGRectGetMinX(pixels), CGRectGetMinY(pixels), CGRectGetMaxX(pixels),
                                   CGRectGetMaxY(pixels), *state.fillColor, state.alpha);
        return;
    }
    if (!isNumber(rect) || !isFinite(state.toPixels)) return;
    if (seat::Painter* const painter = context->canvas().painter())
        painter->fillPath(seat::pathOf(cornersOf(rect)), state.toPixels, seat::FillRule::Winding, *state.fillColor,
                          state.alpha);
}

void CGContextFillPath(CGContextRef context, const CGPath& path) {
    if (!context || !context->state().fillColor) return;
    const auto& state = context->state();
    if (!isFinite(state.toPixels)) return;
    seat::Canvas& canvas = context->canvas();
    if (!state.clip.shape) {
        if (const auto covered = seat::convexPathCoverage(path, state.toPixels, canvas.clip().rect)) {
            canvas.fillCovered(*covered->runs, covered->x, covered->y, *state.fillColor, state.alpha);
            return;
        }
    }
    if (seat::Painter* const painter = canvas.painter())
        painter->fillPath(path, state.toPixels, seat::FillRule::Winding, *state.fillColor, state.alpha);
}

void CGContextStrokePath(CGContextRef context, const CGPath& path) {
    if (!context || !context->state().strokeColor) return;
    const auto& state = context->state();
    if (!isFinite(state.toPixels) || !(state.lineWidth > 0)) return;
    if (seat::Painter* const painter = context->canvas().painter())
        painter->strokePath(path, state.toPixels, state.lineWidth, *state.strokeColor, state.alpha);
}

void CGContextDrawImage(CGContextRef context, CGRect rect, const CGImageRef& image) {
    if (!context || !image || CGRectIsEmpty(rect) || !isNumber(rect)) return;
    const auto& state = context->state();
    if (!isFinite(state.toPixels)) return;
    const CGAffineTransform placed{rect.size.width, 0, 0, rect.size.height, rect.origin.x, rect.origin.y};
    context->canvas().drawImage(*image, CGAffineTransformConcat(placed, state.toPixels), state.alpha);
}
