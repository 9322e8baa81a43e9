// The colour field: drawn once, on a worker, and shown by the main thread.

#include "colourpicker/UIImage_CoreGraphics.h"
#include "colourpicker/ZKColorMapView.h"
#include "platform/foundation/NSOperationQueue.h"
#include "platform/quartz/CATransaction.h"

namespace {

constexpr double fadeInDuration = 0.2;

// Tiles finer than the pixels of the largest picture there can be are not drawn: nobody would see the end of it.
constexpr double mostTiles = 16384;

int drawnTiles(double count) { return count <= mostTiles ? static_cast<int>(count) : 0; }

std::shared_ptr<CALayer> makeImageLayer(const std::shared_ptr<CALayer>& viewLayer,
                                        const std::shared_ptr<UIImage>& image) {
    const auto layer = CALayer::alloc()->initWithLayer(viewLayer);
    layer->setFrame({{0, 0}, image ? image->size() : CGSize{}});
    layer->setContents(image ? image->CGImage() : nullptr);
    return layer;
}

} // namespace

bool ZKColorMapView::isAbleToCreateColorMap() const {
    if (!m_didLayoutSubview) return false;
    if (CGRectIsNull(frame())) return false;
    if (CGRectIsEmpty(frame())) return false;
    if (CGRectEqualToRect(frame(), CGRectZero)) return false;
    return m_saturationUpperLimit && m_tileSize;
}

// The worker must not read the view while the main thread changes it, so it is left a copy of what it needs.
void ZKColorMapView::gateInitializeQueue() {
    const bool able = isAbleToCreateColorMap();
    if (able && !colorMapLayer()) m_gridToDraw = std::make_shared<const TileGrid>(grid());
    if (m_initializeQueue) m_initializeQueue->setSuspended(!able);
}

// Worker.
void ZKColorMapView::createColorMapLayer() {
    if (colorMapLayer()) return;
    const auto tiles = m_gridToDraw.load();
    if (!tiles) return;
    const auto colorMap =
        colorMapImageWithSize_tileSize_saturationUpperLimit(tiles->size, tiles->tile, tiles->desaturation);
    const auto background = backgroundImageWithSize_tileSize(tiles->size, tiles->tile);

    CATransaction::begin();
    CATransaction::setDisableActions(true);
    setColorMapLayer(makeImageLayer(layer(), colorMap));
    setColorMapBackgroundLayer(makeImageLayer(layer(), background));
    CATransaction::commit();
}

void ZKColorMapView::installColorMap() {
    layer()->insertSublayer_atIndex(colorMapBackgroundLayer(), 0);
    layer()->insertSublayer_atIndex(colorMapLayer(), 1);
    if (const auto field = colorMapLayer()) field->setOpacity(brightness());
    invalidateIntrinsicContentSize();
    UIView::animateWithDuration_animations(fadeInDuration, [this] { setAlpha(1); });
}

// Stripes of pure hue, then white over them, denser row by row.
std::shared_ptr<UIImage>
ZKColorMapView::colorMapImageWithSize_tileSize_saturationUpperLimit(CGSize size, double tileSize, double limit) {
    const TileGrid tiles{size, tileSize, limit};
    return zk_imageWithSize_renderer(tiles.fieldSize(), [&tiles](CGContextRef context, CGRect rect) {
        const double t = tiles.tile;
        const int columns = drawnTiles(tiles.columns());
        for (int i = 0; i < columns; ++i) {
            const auto hue = UIColor::colorWithHue_saturation_brightness_alpha(tiles.hueOfColumn(i), 1, 1, 1);
            CGContextSetFillColorWithColor(context, hue->CGColor());
            CGContextFillRect(context, {{rect.origin.x + t * i, rect.origin.y}, {t, rect.size.height}});
        }
        const int rows = drawnTiles(tiles.rows());
        for (int j = 0; j < rows; ++j) {
            CGContextSetRGBFillColor(context, 1, 1, 1, tiles.whitenessOfRow(j));
            CGContextFillRect(context, {{rect.origin.x, rect.origin.y + t * j}, {rect.size.width, t}});
        }
    });
}

std::shared_ptr<UIImage> ZKColorMapView::backgroundImageWithSize_tileSize(CGSize size, double tileSize) {
    const TileGrid tiles{size, tileSize, 0};
    return zk_imageWithSize_renderer(tiles.fieldSize(), [&tiles](CGContextRef context, CGRect rect) {
        CGContextSetRGBFillColor(context, 1, 1, 1, 1);
        CGContextFillRect(context, rect);
        CGContextSetGrayFillColor(context, 0, 1);
        const double t = tiles.tile;
        const int columns = drawnTiles(tiles.columns());
        const int rows = drawnTiles(tiles.rows());
        for (int j = 0; j < rows; ++j)
            for (int i = 0; i < columns; ++i)
                CGContextFillRect(context, {{rect.origin.x + t * i, rect.origin.y + t * j}, {t, t}});
    });
}
