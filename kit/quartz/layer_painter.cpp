#include "kit/quartz/layer_painter.h"

#include "kit/quartz/LayerInternals.h"
#include "kit/quartz/LayerShape.h"
#include "kit/quartz/context.h"
#include "kit/quartz/geometry.h"

#include <vector>

namespace seat {

namespace {

class LayerPainter {
public:
    explicit LayerPainter(Canvas& canvas) : m_canvas(canvas) {}

    void paint(CALayer& layer, const CGAffineTransform& toPixels);

private:
    void paintWhole(CALayer& layer, const LayerShape& shape, double opacity);
    void paintContent(CALayer& layer, const LayerShape& shape, double opacity);
    void paintRounded(CALayer& layer, const LayerShape& shape);
    void paintMasked(CALayer& layer, const LayerShape& shape);
    void paintApart(CALayer& layer, const LayerShape& shape, double opacity);
    void paintSublayers(CALayer& layer, const LayerShape& shape);

    Canvas& m_canvas;
};

// Transparent pixels that stand for a place on the canvas.
struct ApartCanvas final : PixelRows {
    explicit ApartCanvas(const PixelRect& where)
        : place(where), pixels(static_cast<std::size_t>(where.width()) * static_cast<std::size_t>(where.height())),
          canvas({pixels.data(), where.width(), where.height(), where.width() * std::ptrdiff_t{4}}) {}

    CGAffineTransform moved(const CGAffineTransform& toPixels) const {
        return CGAffineTransformConcat(toPixels, CGAffineTransformMakeTranslation(-place.left, -place.top));
    }

    const std::uint32_t* at(int x, int y) override {
        return pixels.data() + std::ptrdiff_t{y - place.top} * place.width() + (x - place.left);
    }

    PixelRect place;
    std::vector<std::uint32_t> pixels;
    Canvas canvas;
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
    Clip m_clip;
};

bool paints(const CGColorRef& color) { return color && color->alpha > 0; }
bool hasBorder(const LayerValues& values) { return values.borderWidth > 0 && paints(values.borderColor); }

// Half a border's width, where the border hides the fill's edge: else the fill would shine through the border's soft
// rim at round corners.
double insetUnderBorder(const LayerShape& shape, const LayerValues& values) {
    const bool hides = hasBorder(values) && values.borderColor->alpha >= 1 && !shape.isPlainRect();
    return hides ? shape.borderPixels(values.borderWidth) / 2 : 0;
}

// True when parts of the layer may lie over one another, so that opacity must be applied to all of them at once.
bool needsGroup(const CALayer& layer) {
    const auto& state = LayerInternals::state(layer);
    const auto& values = LayerInternals::shown(layer);
    if (!state.sublayers.empty() || state.delegate) return true;
    const int parts = int{paints(values.backgroundColor)} + int{state.contents != nullptr} +
                      int{state.gradient != nullptr} + int{hasBorder(values)};
    return parts > 1;
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
    else
        paintWhole(layer, *shape, std::min(values.opacity, 1.0));
}

// `opacity` is 1 for layers with more than one part.
void LayerPainter::paintWhole(CALayer& layer, const LayerShape& shape, double opacity) {
    const auto& values = LayerInternals::shown(layer);
    if (layer.masksToBounds() && shape.radius() > 0 && !layer.sublayers().empty())
        paintRounded(layer, shape);
    else
        paintContent(layer, shape, opacity);
    if (hasBorder(values) && !shape.extent().intersected(m_canvas.clip().rect).isEmpty())
        shape.strokeInside(m_canvas, *values.borderColor, values.borderWidth, opacity);
}

// All but the border.
void LayerPainter::paintContent(CALayer& layer, const LayerShape& shape, double opacity) {
    auto& state = LayerInternals::state(layer);
    const auto& values = LayerInternals::shown(layer);
    const PixelRect seen = shape.extent().intersected(m_canvas.clip().rect);
    if (!seen.isEmpty()) {
        const double inset = insetUnderBorder(shape, values);
        if (paints(values.backgroundColor)) shape.fill(m_canvas, *values.backgroundColor, opacity, inset);
        if (state.gradient) shape.fillGradient(m_canvas, *state.gradient, opacity, inset);
        if (state.contents) {
            const CGRect& bounds = values.bounds;
            const CGAffineTransform placed{bounds.size.width, 0, 0, bounds.size.height, bounds.origin.x,
                                           bounds.origin.y};
            m_canvas.drawImage(*state.contents, CGAffineTransformConcat(placed, shape.snappedToPixels()), opacity);
        }
        if (state.delegate) {
            const ClipScope clip(m_canvas);
            m_canvas.setClip({seen, m_canvas.clip().shape});
            CGContext context(m_canvas, shape.snappedToPixels());
            state.delegate->drawLayer_inContext(layer, &context);
        }
    }
    paintSublayers(layer, shape);
}

// Only the pixels at the corners take the way round through pixels of their own.
void LayerPainter::paintRounded(CALayer& layer, const LayerShape& shape) {
    const ClipScope clip(m_canvas);
    const auto outer = m_canvas.clip();
    for (const auto& [pixels, isSoft] : shape.patches(outer.rect)) {
        m_canvas.setClip({pixels.intersected(outer.rect), outer.shape});
        if (isSoft)
            paintMasked(layer, shape);
        else
            paintContent(layer, shape, 1);
    }
}

void LayerPainter::paintMasked(CALayer& layer, const LayerShape& shape) {
    const auto& values = LayerInternals::shown(layer);
    ApartCanvas apart(m_canvas.clip().rect);
    if (const auto moved = LayerShape::make(values, apart.moved(shape.toPixels())))
        LayerPainter(apart.canvas).paintContent(layer, moved->withSquareCorners(), 1);
    shape.drawInside(m_canvas, apart, insetUnderBorder(shape, values));
}

// Into pixels of its own first: opacity then holds for all of it at once.
void LayerPainter::paintApart(CALayer& layer, const LayerShape& shape, double opacity) {
    const PixelRect seen = treeExtent(layer, shape).intersected(m_canvas.clip().rect);
    if (seen.isEmpty()) return;
    ApartCanvas apart(seen);
    if (const auto moved = LayerShape::make(LayerInternals::shown(layer), apart.moved(shape.toPixels())))
        LayerPainter(apart.canvas).paintWhole(layer, *moved, 1);
    m_canvas.drawPixels(apart.pixels.data(), seen.width(), seen.height(), seen.left, seen.top, opacity);
}

void LayerPainter::paintSublayers(CALayer& layer, const LayerShape& shape) {
    const auto& sublayers = LayerInternals::state(layer).sublayers;
    if (sublayers.empty()) return;
    const ClipScope clip(m_canvas);
    if (layer.masksToBounds()) {
        if (shape.isUpright()) {
            m_canvas.setClip({m_canvas.clip().rect.intersected(shape.pixels()), m_canvas.clip().shape});
        } else {
            const auto& outer = m_canvas.clip();
            m_canvas.setClip({outer.rect.intersected(shape.extent()),
                              std::make_shared<const ClipShape>(ClipShape{pathOf(shape.outline()), outer.shape})});
        }
        if (m_canvas.clip().rect.isEmpty()) return;
    }
    // A delegate may change the tree while it draws; what it takes out is still drawn in this frame.
    for (const auto& sublayer : std::vector(sublayers)) paint(*sublayer, shape.toPixels());
}

} // namespace

void paintLayerTree(CALayer& layer, Canvas& canvas, const CGAffineTransform& toPixels) {
    LayerPainter(canvas).paint(layer, toPixels);
}

} // namespace seat
