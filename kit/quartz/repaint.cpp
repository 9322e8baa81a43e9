#include "kit/quartz/repaint.h"

#include "kit/quartz/LayerHost.h"
#include "kit/quartz/LayerInternals.h"
#include "kit/quartz/geometry.h"
#include "kit/quartz/snapping.h"
#include "platform/uikit/UIScreen.h"

#include <cmath>

namespace seat {

namespace {

bool isShown(const CALayer& layer) { return !layer.isHidden() && LayerInternals::shown(layer).opacity > 0; }

// In the layer's own coordinates.
CGRect treeExtent(const CALayer& layer) {
    CGRect extent = LayerInternals::shown(layer).bounds;
    if (CGRectIsEmpty(extent)) extent = CGRectNull;
    if (layer.masksToBounds()) return extent;
    for (const auto& sublayer : layer.sublayers())
        if (isShown(*sublayer))
            extent = CGRectUnion(extent,
                                 CGRectApplyAffineTransform(treeExtent(*sublayer),
                                                            transformToSuperlayer(LayerInternals::shown(*sublayer))));
    return extent;
}

} // namespace

void reportRepaint(const CALayer& layer, Reach reach) {
    if (!LayerInternals::host(layer)) return;
    reportRepaint(layer, reach == Reach::Tree ? treeExtent(layer) : LayerInternals::shown(layer).bounds);
}

void reportRepaint(const CALayer& layer, CGRect rect) {
    LayerHost* const host = LayerInternals::host(layer);
    if (!host) return;
    for (const CALayer* at = &layer; at; at = at->superlayer()) {
        if (!isShown(*at)) return;
        if (at->masksToBounds()) rect = CGRectIntersection(rect, LayerInternals::shown(*at).bounds);
        if (CGRectIsEmpty(rect)) return;
        rect = CGRectApplyAffineTransform(rect, transformToSuperlayer(LayerInternals::shown(*at)));
    }
    const double scale = UIScreen::mainScreen()->scale();
    const double left = pixelEdgeBelow(CGRectGetMinX(rect) * scale);
    const double top = pixelEdgeBelow(CGRectGetMinY(rect) * scale);
    const double right = pixelEdgeAbove(CGRectGetMaxX(rect) * scale);
    const double bottom = pixelEdgeAbove(CGRectGetMaxY(rect) * scale);
    if (!std::isfinite(left + top + right + bottom)) return;
    host->layerNeedsRepaint(CGRectMake(left / scale, top / scale, (right - left) / scale, (bottom - top) / scale));
}

} // namespace seat
