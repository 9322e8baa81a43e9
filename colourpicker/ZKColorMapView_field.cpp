// The colour field: drawn once, on a worker, and shown by the main thread.

#include "colourpicker/UIImage_CoreGraphics.h"
#include "colourpicker/ZKColorMapView.h"
#include "platform/foundation/NSOperationQueue.h"
#include "platform/quartz/CATransaction.h"
#include "platform/uikit/UIScreen.h"

#include <cmath>

namespace {

constexpr double fadeInDuration = 0.2;

// Tiles finer than the pixels of the largest picture there can be are not drawn: nobody would see the end of it.
constexpr double mostTiles = 16384;

int drawnTiles(double count) { return count <= mostTiles ? static_cast<int>(count) : 0; }

// Where the tiles of a line are drawn, in points. Their edges go to the nearest pixel's: two that share a pixel would
// both cover it in part, and what lies below would show through. The last one goes on beyond the picture's edge, which
// cuts it: the picture is whole pixels, too.
class DrawnEdges {
public:
    DrawnEdges(double tile, int count)
        : m_pixels(tile * UIScreen::mainScreen()->scale()), m_tile(tile), m_count(count) {}

    double operator[](int i) const {
        return i == m_count ? m_tile * (i + 1) : std::floor(m_pixels * i + 0.5) * m_tile / m_pixels;
    }
    double length(int i) const { return (*this)[i + 1] - (*this)[i]; }

private:
    double m_pixels; // that a tile has, in each direction
    double m_tile;
    int m_count;
};

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
        const int columns = drawnTiles(tiles.columns());
        const DrawnEdges x(tiles.tile, columns);
        const int rows = drawnTiles(tiles.rows());
        const DrawnEdges y(tiles.tile, rows);
        const CGSize whole{x[columns], y[rows]};
        for (int i = 0; i < columns; ++i) {
            const auto hue = UIColor::colorWithHue_saturation_brightness_alpha(tiles.hueOfColumn(i), 1, 1, 1);
            CGContextSetFillColorWithColor(context, hue->CGColor());
            CGContextFillRect(context, {{rect.origin.x + x[i], rect.origin.y}, {x.length(i), whole.height}});
        }
        for (int j = 0; j < rows; ++j) {
            CGContextSetRGBFillColor(context, 1, 1, 1, tiles.whitenessOfRow(j));
            CGContextFillRect(context, {{rect.origin.x, rect.origin.y + y[j]}, {whole.width, y.length(j)}});
        }
    });
}

std::shared_ptr<UIImage> ZKColorMapView::backgroundImageWithSize_tileSize(CGSize size, double tileSize) {
    const TileGrid tiles{size, tileSize, 0};
    return zk_imageWithSize_renderer(tiles.fieldSize(), [&tiles](CGContextRef context, CGRect rect) {
        CGContextSetRGBFillColor(context, 1, 1, 1, 1);
        CGContextFillRect(context, rect);
        CGContextSetGrayFillColor(context, 0, 1);
        const int columns = drawnTiles(tiles.columns());
        const int rows = drawnTiles(tiles.rows());
        const DrawnEdges x(tiles.tile, columns);
        const DrawnEdges y(tiles.tile, rows);
        for (int j = 0; j < rows; ++j)
            for (int i = 0; i < columns; ++i)
                CGContextFillRect(context, {{rect.origin.x + x[i], rect.origin.y + y[j]}, {x.length(i), y.length(j)}});
    });
}
