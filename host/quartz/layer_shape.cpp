#include "host/quartz/layer_shape.h"

#include "host/quartz/painting.h"
#include "host/quartz/snapping.h"
#include "platform/quartz/CAGradientLayer.h"

#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>

#include <cmath>

namespace host {

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
    return {wholePixel(std::floor(m_left)), wholePixel(std::floor(m_top)), wholePixel(std::ceil(m_right)),
            wholePixel(std::ceil(m_bottom))};
}

QPainterPath LayerShape::outline(double inset) const {
    QPainterPath path;
    if (m_upright) {
        const QRectF rect(QPointF(m_left + inset, m_top + inset), QPointF(m_right - inset, m_bottom - inset));
        if (rect.width() <= 0 || rect.height() <= 0) return path;
        const double radius = std::max(m_radius - inset, 0.0);
        if (radius > 0)
            path.addRoundedRect(rect, radius, radius);
        else
            path.addRect(rect);
        return path;
    }
    const double points = m_pixelsPerPoint > 0 ? inset / m_pixelsPerPoint : 0;
    const CGRect bounds = CGRectInset(m_bounds, points, points);
    if (CGRectIsEmpty(bounds)) return path;
    const double radius = m_pixelsPerPoint > 0 ? std::max(m_radius / m_pixelsPerPoint - points, 0.0) : 0;
    path.addRoundedRect(QRectF(bounds.origin.x, bounds.origin.y, bounds.size.width, bounds.size.height), radius,
                        radius);
    return toolkitTransform(m_toPixels).map(path);
}

void LayerShape::fill(Canvas& canvas, const CGColor& color, double alpha, double inset) const {
    if (isPlainRect()) {
        canvas.fillPixels(pixels(), color, alpha);
        return;
    }
    const auto ink = toolkitColor(color, alpha);
    if (!ink) return;
    if (QPainter* const painter = canvas.painter()) painter->fillPath(outline(inset), *ink);
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
    if (isPlainRect()) {
        const PixelRect outer = pixels();
        const int wide = static_cast<int>(std::min<double>(pixelsWide, std::min(outer.width(), outer.height())));
        const int top = std::min(outer.top + wide, outer.bottom);
        const int bottom = std::max(outer.bottom - wide, top);
        const int left = std::min(outer.left + wide, outer.right);
        const int right = std::max(outer.right - wide, left);
        canvas.fillPixels({outer.left, outer.top, outer.right, top}, color, alpha);
        canvas.fillPixels({outer.left, bottom, outer.right, outer.bottom}, color, alpha);
        canvas.fillPixels({outer.left, top, left, bottom}, color, alpha);
        canvas.fillPixels({right, top, outer.right, bottom}, color, alpha);
        return;
    }
    const auto ink = toolkitColor(color, alpha);
    if (!ink) return;
    QPainter* const painter = canvas.painter();
    if (!painter) return;
    QPainterPath ring = outline();
    ring.addPath(outline(pixelsWide));
    ring.setFillRule(Qt::OddEvenFill);
    painter->fillPath(ring, *ink);
}

void LayerShape::fillGradient(Canvas& canvas, const CAGradientLayer& layer, double alpha, double inset) const {
    const auto& colors = layer.colors();
    if (colors.empty() || m_extent.isEmpty()) return;
    const auto place = [this](CGPoint fraction) {
        const CGPoint point{m_bounds.origin.x + fraction.x * m_bounds.size.width,
                            m_bounds.origin.y + fraction.y * m_bounds.size.height};
        const CGPoint pixel = CGPointApplyAffineTransform(point, m_snappedToPixels);
        return QPointF(pixel.x, pixel.y);
    };
    QLinearGradient gradient(place(layer.startPoint()), place(layer.endPoint()));
    for (std::size_t i = 0; i < colors.size(); ++i) {
        const double at = colors.size() > 1 ? static_cast<double>(i) / static_cast<double>(colors.size() - 1) : 0;
        const auto ink = colors[i] ? toolkitColor(*colors[i], alpha) : std::nullopt;
        gradient.setColorAt(at, ink ? *ink : QColor(Qt::transparent));
    }
    if (QPainter* const painter = canvas.painter()) painter->fillPath(outline(isPlainRect() ? 0 : inset), gradient);
}

} // namespace host
