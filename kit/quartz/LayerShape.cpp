#include "kit/quartz/LayerShape.h"

#include "kit/quartz/Coverage.h"
#include "kit/quartz/GradientRows.h"
#include "kit/quartz/geometry.h"
#include "kit/quartz/rounded_coverage.h"
#include "kit/quartz/snapping.h"
#include "platform/quartz/CAGradientLayer.h"

#include <array>
#include <cmath>

namespace seat {

namespace {

constexpr double farAway = 1e6; // pixels; nothing is shown there, and whole numbers still hold it

int wholePixel(double edge) { return static_cast<int>(std::clamp(edge, -farAway, farAway)); }

// The nearest pixel edges; what is there at all is at least a pixel wide.
void snap(double& from, double& to) {
    const double first = nearestPixelEdge(from);
    const double last = nearestPixelEdge(to);
    if (first < last) {
        from = first;
        to = last;
    } else {
        from = pixelEdgeBelow(from);
        to = from + 1;
    }
}

bool isFinite(const CGAffineTransform& t) { return std::isfinite(t.a + t.b + t.c + t.d + t.tx + t.ty); }

// For a clip that the plain loops do not know.
void fillByPainter(Canvas& canvas, const CGPath& path, FillRule rule, const CGColor& color, double alpha) {
    if (Painter* const painter = canvas.painter())
        painter->fillPath(path, CGAffineTransformIdentity, rule, color, alpha);
}

// What a border of that width covers of a rectangle.
std::array<PixelRect, 4> bars(const PixelRect& outer, double width) {
    const int wide = static_cast<int>(std::min<double>(width, std::min(outer.width(), outer.height())));
    const int top = std::min(outer.top + wide, outer.bottom);
    const int bottom = std::max(outer.bottom - wide, top);
    const int left = std::min(outer.left + wide, outer.right);
    const int right = std::max(outer.right - wide, left);
    return {{{outer.left, outer.top, outer.right, top},
             {outer.left, bottom, outer.right, outer.bottom},
             {outer.left, top, left, bottom},
             {right, top, outer.right, bottom}}};
}

} // namespace

std::optional<LayerShape> LayerShape::make(const LayerValues& values, const CGAffineTransform& toPixels) {
    LayerShape shape;
    const CGRect extent = CGRectApplyAffineTransform(values.bounds, toPixels);
    if (!std::isfinite(extent.origin.x + extent.origin.y + extent.size.width + extent.size.height)) return {};
    if (!isFinite(toPixels)) return {};
    shape.m_toPixels = toPixels;
    shape.m_snappedToPixels = toPixels;
    shape.m_bounds = values.bounds;
    shape.m_extent = {
        wholePixel(pixelEdgeBelow(CGRectGetMinX(extent))), wholePixel(pixelEdgeBelow(CGRectGetMinY(extent))),
        wholePixel(pixelEdgeAbove(CGRectGetMaxX(extent))), wholePixel(pixelEdgeAbove(CGRectGetMaxY(extent)))};
    if (CGRectIsEmpty(values.bounds)) {
        shape.m_extent = {};
        return shape;
    }
    shape.m_upright = toPixels.b == 0 && toPixels.c == 0;
    shape.m_pixelsPerPoint = std::sqrt(std::abs(toPixels.a * toPixels.d - toPixels.b * toPixels.c));
    shape.m_left = CGRectGetMinX(extent);
    shape.m_top = CGRectGetMinY(extent);
    shape.m_right = CGRectGetMaxX(extent);
    shape.m_bottom = CGRectGetMaxY(extent);
    const double shorter = std::min(extent.size.width, extent.size.height);
    if (values.cornerRadius > 0) shape.m_radius = std::min(values.cornerRadius * shape.m_pixelsPerPoint, shorter / 2);
    // A disc keeps its place between the pixels: it would lose its middle, or tremble while it moves.
    const bool isDisc = shape.m_radius > 0 && std::abs(extent.size.width - extent.size.height) <= snappingAllowance &&
                        shape.m_radius >= shorter / 2 - snappingAllowance;
    if (shape.m_upright && !isDisc) {
        const double left = shape.m_left;
        const double top = shape.m_top;
        snap(shape.m_left, shape.m_right);
        snap(shape.m_top, shape.m_bottom);
        shape.m_snappedToPixels.tx += shape.m_left - left;
        shape.m_snappedToPixels.ty += shape.m_top - top;
    }
    return shape;
}

PixelRect LayerShape::pixels() const {
    if (!m_upright) return m_extent;
    return {wholePixel(pixelEdgeBelow(m_left)), wholePixel(pixelEdgeBelow(m_top)), wholePixel(pixelEdgeAbove(m_right)),
            wholePixel(pixelEdgeAbove(m_bottom))};
}

Outline LayerShape::outline(double inset) const {
    if (m_upright)
        return roundedOutline(m_left + inset, m_top + inset, m_right - inset, m_bottom - inset, m_radius - inset);
    if (!(m_pixelsPerPoint > 0)) return {};
    // Rounded in pixels, so that chords are short enough there, then turned.
    const CGRect bounds =
        CGRectApplyAffineTransform(m_bounds, CGAffineTransformMakeScale(m_pixelsPerPoint, m_pixelsPerPoint));
    return transformed(
        roundedOutline(CGRectGetMinX(bounds) + inset, CGRectGetMinY(bounds) + inset, CGRectGetMaxX(bounds) - inset,
                       CGRectGetMaxY(bounds) - inset, m_radius - inset),
        CGAffineTransformConcat(CGAffineTransformMakeScale(1 / m_pixelsPerPoint, 1 / m_pixelsPerPoint), m_toPixels));
}

std::vector<LayerShape::Patch> LayerShape::patches(const PixelRect& clip, double corner) const {
    std::vector<Patch> result;
    const auto add = [&](const PixelRect& pixels, bool isSoft) {
        if (!pixels.isEmpty() && !pixels.intersected(clip).isEmpty()) result.push_back({pixels, isSoft});
    };
    const PixelRect all = pixels();
    const bool standsOnPixels =
        isOnPixelEdge(m_left) && isOnPixelEdge(m_top) && isOnPixelEdge(m_right) && isOnPixelEdge(m_bottom);
    const int size = wholePixel(std::ceil(corner));
    if (!m_upright || !standsOnPixels || 2 * size >= all.width()) {
        add(all, !isPlainRect());
        return result;
    }
    // The corners one by one; what is between those of a side, and between the sides, is covered.
    const int top = std::min(all.top + size, all.bottom);
    const int bottom = std::max(all.bottom - size, top);
    const auto addSide = [&](int from, int to) {
        add({all.left, from, all.left + size, to}, /*isSoft=*/true);
        add({all.left + size, from, all.right - size, to}, /*isSoft=*/false);
        add({all.right - size, from, all.right, to}, /*isSoft=*/true);
    };
    addSide(all.top, top);
    add({all.left, top, all.right, bottom}, /*isSoft=*/false);
    addSide(bottom, all.bottom);
    return result;
}

// What of a soft patch the shape covers; the runs stand at `x` and `y`.
struct LayerShape::Soft {
    CoveredRuns runs;
    int x = 0;
    int y = 0;
};

LayerShape::Soft LayerShape::soft(const PixelRect& patch, const PixelRect& clip, double inset, double frame) const {
    constexpr int mostKeptPixels = 200; // wide or high
    if (m_upright && patch.width() <= mostKeptPixels && patch.height() <= mostKeptPixels)
        return {roundedCoverage({m_left, m_top, m_right, m_bottom, m_radius, inset, frame}, patch), patch.left,
                patch.top};
    Coverage coverage(patch.intersected(clip));
    coverage.add(outline(inset));
    if (frame > 0) {
        Outline inside = outline(frame);
        std::reverse(inside.begin(), inside.end());
        coverage.add(inside);
    }
    return {coverage.runs(), 0, 0};
}

// The straight part of an edge under an opaque border is filled whole, whatever the inset: the border hides it.
void LayerShape::fill(Canvas& canvas, const CGColor& color, double alpha, double inset) const {
    if (isPlainRect()) {
        canvas.fillPixels(pixels(), color, alpha);
        return;
    }
    const auto& clip = canvas.clip();
    if (clip.shape) {
        fillByPainter(canvas, pathOf(outline(inset)), FillRule::Winding, color, alpha);
        return;
    }
    for (const auto& [patch, isSoft] : patches(clip.rect)) {
        if (isSoft) {
            const Soft edge = soft(patch, clip.rect, inset, 0);
            canvas.fillCovered(*edge.runs, edge.x, edge.y, color, alpha);
        } else {
            canvas.fillPixels(patch, color, alpha);
        }
    }
}

LayerShape LayerShape::withSquareCorners() const {
    LayerShape square = *this;
    square.m_radius = 0;
    return square;
}

double LayerShape::borderPixels(double width) const {
    return std::max(1.0, std::floor(width * m_pixelsPerPoint + 0.5 + snappingAllowance));
}

void LayerShape::strokeInside(Canvas& canvas, const CGColor& color, double width, double alpha) const {
    const double pixelsWide = borderPixels(width);
    if (m_upright && m_radius <= 0) {
        for (const PixelRect& bar : bars(pixels(), pixelsWide)) canvas.fillPixels(bar, color, alpha);
        return;
    }
    const auto& clip = canvas.clip();
    if (clip.shape) {
        CGPath ring = pathOf(outline());
        const CGPath inside = pathOf(outline(pixelsWide));
        ring.elements.insert(ring.elements.end(), inside.elements.begin(), inside.elements.end());
        fillByPainter(canvas, ring, FillRule::EvenOdd, color, alpha);
        return;
    }
    for (const auto& [patch, isSoft] : patches(clip.rect, std::max(m_radius, pixelsWide))) {
        if (isSoft) {
            const Soft edge = soft(patch, clip.rect, 0, pixelsWide);
            canvas.fillCovered(*edge.runs, edge.x, edge.y, color, alpha);
        } else {
            for (const PixelRect& bar : bars(pixels(), pixelsWide))
                canvas.fillPixels(bar.intersected(patch), color, alpha);
        }
    }
}

void LayerShape::fillGradient(Canvas& canvas, const CAGradientLayer& layer, double alpha, double inset) const {
    const auto& colors = layer.colors();
    const PixelRect seen = pixels().intersected(canvas.clip().rect);
    if (colors.empty() || seen.isEmpty()) return;
    const auto place = [this](CGPoint fraction) {
        return CGPointApplyAffineTransform({m_bounds.origin.x + fraction.x * m_bounds.size.width,
                                            m_bounds.origin.y + fraction.y * m_bounds.size.height},
                                           m_snappedToPixels);
    };
    GradientRows rows(place(layer.startPoint()), place(layer.endPoint()), colors, alpha, seen);
    drawInside(canvas, rows, isPlainRect() ? 0 : inset);
}

void LayerShape::drawInside(Canvas& canvas, PixelRows& rows, double inset) const {
    const auto& clip = canvas.clip();
    for (const auto& [patch, isSoft] : patches(clip.rect)) {
        if (clip.shape) {
            if (Painter* const painter = canvas.painter())
                painter->fillPath(pathOf(outline(inset)), patch.intersected(clip.rect), rows);
        } else if (isSoft) {
            const Soft edge = soft(patch, clip.rect, inset, 0);
            canvas.drawCovered(*edge.runs, edge.x, edge.y, rows);
        } else {
            canvas.drawRows(patch, rows);
        }
    }
}

} // namespace seat
