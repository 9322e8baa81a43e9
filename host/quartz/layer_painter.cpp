#include "host/quartz/layer_painter.h"

#include "host/quartz/context.h"
#include "host/quartz/layer_internals.h"
#include "host/quartz/layer_shape.h"

#include <QBrush>
#include <QImage>
#include <QPainter>
#include <QPainterPath>

#include <cmath>
#include <vector>

namespace host {

namespace {

class LayerPainter {
public:
    explicit LayerPainter(Canvas& canvas) : m_canvas(canvas) {}

    void paint(CALayer& layer, const CGAffineTransform& toPixels);

private:
    void paintParts(CALayer& layer, const LayerShape& shape, double opacity);
    void paintSublayers(CALayer& layer, const LayerShape& shape);
    void paintApart(CALayer& layer, const LayerShape& shape, double opacity);

    Canvas& m_canvas;
};

// The clip back as it was.
class ClipScope {
public:
    explicit ClipScope(Canvas& canvas) : m_canvas(canvas), m_clip(canvas.clip()) {}
    ~ClipScope() { m_canvas.setClip(m_clip); }
    ClipScope(const ClipScope&) = delete;
    ClipScope& operator=(const ClipScope&) = delete;

private:
    Canvas& m_canvas;
    Canvas::Clip m_clip;
};

bool paints(const CGColorRef& color) { return color && color->alpha > 0; }
bool hasBorder(const LayerValues& values) { return values.borderWidth > 0 && paints(values.borderColor); }

// True when parts of the layer may lie over one another, so that opacity must be applied to all of them at once.
bool needsGroup(const CALayer& layer) {
    const auto& state = LayerInternals::state(layer);
    const auto& values = LayerInternals::shown(layer);
    if (!state.sublayers.empty() || state.delegate) return true;
    const int parts = int{paints(values.backgroundColor)} + int{state.contents != nullptr} +
                      int{state.gradient != nullptr} + int{hasBorder(values)};
    return parts > 1;
}

bool isInsideRoundedCorners(const LayerShape& shape, const PixelRect& rect) {
    const double r = shape.radius();
    const bool clearOfSides = rect.left >= shape.left() + r && rect.right <= shape.right() - r;
    const bool clearOfEnds = rect.top >= shape.top() + r && rect.bottom <= shape.bottom() - r;
    return shape.isUpright() && (clearOfSides || clearOfEnds);
}

// What the layer and all in it may touch.
PixelRect treeExtent(const CALayer& layer, const LayerShape& shape) {
    PixelRect extent = shape.extent();
    if (layer.masksToBounds()) return extent;
    for (const auto& sublayer : layer.sublayers()) {
        const auto& values = LayerInternals::shown(*sublayer);
        if (sublayer->isHidden() || !(values.opacity > 0)) continue;
        const auto place =
            LayerShape::make(values, CGAffineTransformConcat(transformToSuperlayer(values), shape.toPixels()));
        if (!place) continue;
        const PixelRect below = treeExtent(*sublayer, *place);
        if (below.isEmpty()) continue;
        extent = extent.isEmpty()
                     ? below
                     : PixelRect{std::min(extent.left, below.left), std::min(extent.top, below.top),
                                 std::max(extent.right, below.right), std::max(extent.bottom, below.bottom)};
    }
    return extent;
}

void LayerPainter::paint(CALayer& layer, const CGAffineTransform& toPixels) {
    const auto& values = LayerInternals::shown(layer);
    if (layer.isHidden() || !(values.opacity > 0)) return;
    const auto shape = LayerShape::make(values, CGAffineTransformConcat(transformToSuperlayer(values), toPixels));
    if (!shape) return;
    const bool isSeen = !shape->extent().intersected(m_canvas.clip().rect).isEmpty();
    if (!isSeen && (layer.masksToBounds() || layer.sublayers().empty())) return;
    if (values.opacity < 1 && needsGroup(layer))
        paintApart(layer, *shape, values.opacity);
    else if (layer.masksToBounds() && shape->radius() > 0 && !layer.sublayers().empty() &&
             !isInsideRoundedCorners(*shape, m_canvas.clip().rect.intersected(shape->extent())))
        paintApart(layer, *shape, values.opacity);
    else
        paintParts(layer, *shape, std::min(values.opacity, 1.0));
}

// `opacity` is 1 for layers with more than one part.
void LayerPainter::paintParts(CALayer& layer, const LayerShape& shape, double opacity) {
    auto& state = LayerInternals::state(layer);
    const auto& values = LayerInternals::shown(layer);
    const PixelRect seen = shape.extent().intersected(m_canvas.clip().rect);
    if (!seen.isEmpty()) {
        if (paints(values.backgroundColor)) shape.fill(m_canvas, *values.backgroundColor, opacity);
        if (state.gradient) shape.fillGradient(m_canvas, *state.gradient, opacity);
        if (state.contents) {
            const CGRect& bounds = values.bounds;
            m_canvas.drawImage(
                *state.contents,
                CGAffineTransformConcat({bounds.size.width, 0, 0, bounds.size.height, bounds.origin.x, bounds.origin.y},
                                        shape.snappedToPixels()),
                opacity);
        }
        if (state.delegate) {
            const ClipScope clip(m_canvas);
            m_canvas.setClip({seen, m_canvas.clip().shape});
            CGContext context(m_canvas, shape.snappedToPixels());
            state.delegate->drawLayer_inContext(layer, &context);
        }
    }
    paintSublayers(layer, shape);
    if (!seen.isEmpty() && hasBorder(values))
        shape.strokeInside(m_canvas, *values.borderColor, values.borderWidth, opacity);
}

void LayerPainter::paintSublayers(CALayer& layer, const LayerShape& shape) {
    const auto& sublayers = LayerInternals::state(layer).sublayers;
    if (sublayers.empty()) return;
    const ClipScope clip(m_canvas);
    if (layer.masksToBounds()) {
        if (shape.isUpright()) {
            m_canvas.setClip({m_canvas.clip().rect.intersected(shape.pixels()), m_canvas.clip().shape});
        } else {
            const auto& outer = m_canvas.clip().shape;
            const QPainterPath outline = shape.outline();
            m_canvas.setClip({m_canvas.clip().rect.intersected(shape.extent()),
                              std::make_shared<const QPainterPath>(outer ? outer->intersected(outline) : outline)});
        }
        if (m_canvas.clip().rect.isEmpty()) return;
    }
    // A delegate may change the tree while it draws; what it takes out is still drawn in this frame.
    for (const auto& sublayer : std::vector(sublayers)) paint(*sublayer, shape.toPixels());
}

// Into pixels of its own first: opacity and rounded corners then hold for all of it at once.
void LayerPainter::paintApart(CALayer& layer, const LayerShape& shape, double opacity) {
    const PixelRect seen = treeExtent(layer, shape).intersected(m_canvas.clip().rect);
    if (seen.isEmpty()) return;
    std::vector<std::uint32_t> pixels(static_cast<std::size_t>(seen.width()) * static_cast<std::size_t>(seen.height()));
    Canvas apart({pixels.data(), seen.width(), seen.height(), seen.width() * std::ptrdiff_t{4}});
    const auto& values = LayerInternals::shown(layer);
    const CGAffineTransform moved =
        CGAffineTransformConcat(shape.toPixels(), CGAffineTransformMakeTranslation(-seen.left, -seen.top));
    if (const auto movedShape = LayerShape::make(values, moved)) LayerPainter(apart).paintParts(layer, *movedShape, 1);
    const bool rounded = layer.masksToBounds() && shape.radius() > 0;
    if (!rounded) {
        m_canvas.drawPixels(pixels.data(), seen.width(), seen.height(), seen.left, seen.top, opacity);
        return;
    }
    QPainter* const painter = m_canvas.painter();
    if (!painter) return;
    const QImage image(reinterpret_cast<const uchar*>(pixels.data()), seen.width(), seen.height(), seen.width() * 4,
                       QImage::Format_ARGB32_Premultiplied);
    QBrush brush(image);
    brush.setTransform(QTransform::fromTranslate(seen.left, seen.top));
    painter->setOpacity(std::min(opacity, 1.0));
    painter->fillPath(shape.outline(), brush);
    painter->setOpacity(1);
}

} // namespace

void paintLayerTree(CALayer& layer, Canvas& canvas, const CGAffineTransform& toPixels) {
    LayerPainter(canvas).paint(layer, toPixels);
}

} // namespace host
