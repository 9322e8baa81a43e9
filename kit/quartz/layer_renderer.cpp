#include "kit/quartz/layer_renderer.h"

#include "kit/quartz/Canvas.h"
#include "kit/quartz/geometry.h"
#include "kit/quartz/layer_painter.h"
#include "kit/quartz/snapping.h"

#include <cmath>
#include <vector>

namespace seat {

namespace {

PixelRect damagedPixels(CGRect damage, double scale, const PixelRect& extent) {
    if (CGRectIsEmpty(damage)) return {};
    const auto within = [](double edge, int most) { return static_cast<int>(std::clamp<double>(edge, 0, most)); };
    return {within(pixelEdgeBelow(CGRectGetMinX(damage) * scale), extent.right),
            within(pixelEdgeBelow(CGRectGetMinY(damage) * scale), extent.bottom),
            within(pixelEdgeAbove(CGRectGetMaxX(damage) * scale), extent.right),
            within(pixelEdgeAbove(CGRectGetMaxY(damage) * scale), extent.bottom)};
}

long area(const PixelRect& rect) { return rect.isEmpty() ? 0 : long{rect.width()} * rect.height(); }

PixelRect united(const PixelRect& a, const PixelRect& b) {
    return {std::min(a.left, b.left), std::min(a.top, b.top), std::max(a.right, b.right), std::max(a.bottom, b.bottom)};
}

// Rectangles that do not overlap: nothing translucent may be laid down twice. Two that cost less as one become one.
void addDamage(std::vector<PixelRect>& damage, PixelRect rect) {
    if (rect.isEmpty()) return;
    for (std::size_t i = 0; i < damage.size();) {
        const PixelRect both = united(damage[i], rect);
        if (damage[i].intersected(rect).isEmpty() && area(both) > area(damage[i]) + area(rect)) {
            ++i;
            continue;
        }
        // The larger one may meet rectangles that were passed already.
        rect = both;
        damage.erase(damage.begin() + static_cast<std::ptrdiff_t>(i));
        i = 0;
    }
    damage.push_back(rect);
}

} // namespace

void renderLayerTree(CALayer& root, const PixelTarget& target, double scale, std::span<const CGRect> damageInPoints) {
    if (!target.pixels || !(scale > 0) || !std::isfinite(scale)) return;
    Canvas canvas(target);
    const PixelRect extent = canvas.extent();
    std::vector<PixelRect> damage;
    for (const CGRect& rect : damageInPoints) addDamage(damage, damagedPixels(rect, scale, extent));
    for (const PixelRect& rect : damage) {
        canvas.setClip({rect, nullptr});
        paintLayerTree(root, canvas, CGAffineTransformMakeScale(scale, scale));
    }
}

} // namespace seat
