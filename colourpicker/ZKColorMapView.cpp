#include "colourpicker/ZKColorMapView.h"

#include "colourpicker/ZKColorCursor.h"
#include "platform/dispatch.h"
#include "platform/foundation/NSOperationQueue.h"
#include "platform/quartz/CATransaction.h"
#include "platform/runtime/method.h"
#include "platform/uikit/UIPanGestureRecognizer.h"
#include "platform/uikit/UIScreen.h"
#include "platform/uikit/UITapGestureRecognizer.h"

#include <utility>

NS_CLASS_IMPLEMENTATION(ZKColorMapView, UIControl, method<&ZKColorMapView::handleTap>("handleTap:"),
                        method<&ZKColorMapView::handlePan>("handlePan:"))

namespace {
constexpr double defaultSaturationUpperLimit = 0.95;
constexpr double initialBrightness = 0.5;
} // namespace

ZKColorMapView::ZKColorMapView() = default;
ZKColorMapView::~ZKColorMapView() = default;

std::shared_ptr<ZKColorMapView> ZKColorMapView::colorMapWithFrame(CGRect frame) {
    return colorMapWithFrame_saturationUpperLimit(frame, defaultSaturationUpperLimit);
}

std::shared_ptr<ZKColorMapView> ZKColorMapView::colorMapWithFrame_saturationUpperLimit(CGRect frame, double limit) {
    return alloc()->initWithFrame_saturationUpperLimit(frame, limit);
}

std::shared_ptr<ZKColorMapView> ZKColorMapView::init() {
    return initWithFrame_saturationUpperLimit(CGRectZero, defaultSaturationUpperLimit);
}

std::shared_ptr<ZKColorMapView> ZKColorMapView::initWithFrame_saturationUpperLimit(CGRect frame, double limit) {
    if (!UIControl::initWithFrame(frame)) return nullptr;
    setSaturationUpperLimit(NSNumber::numberWithFloat(static_cast<float>(limit)));
    _init();
    return self(this);
}

std::shared_ptr<ZKColorMapView> ZKColorMapView::initWithCoder(const std::shared_ptr<NSCoder>& coder) {
    if (!UIControl::initWithCoder(coder)) return nullptr;
    _init();
    setBackgroundColor(UIColor::whiteColor());
    return self(this);
}

void ZKColorMapView::_init() {
    setAlpha(0);
    m_didLayoutSubview = false;
    setBrightness(initialBrightness);
    setBackgroundColor(UIColor::whiteColor());

    // One device pixel high, just above the top edge.
    const double pixel = 1 / UIScreen::mainScreen()->scale();
    m_lineLayer = CALayer::layer();
    m_lineLayer->setBackgroundColor(UIColor::colorWithWhite_alpha(0.7, 1)->CGColor());
    m_lineLayer->setFrame({{0, -pixel}, {frame().size.width, pixel}});
    layer()->addSublayer(m_lineLayer);

    m_colorCursor = ZKColorCursor::colorCursorWithPoint(cursorOrigin());
    addSubview(m_colorCursor);

    addGestureRecognizer(UITapGestureRecognizer::alloc()->initWithTarget_action(self(this), "handleTap:"));
    addGestureRecognizer(UIPanGestureRecognizer::alloc()->initWithTarget_action(self(this), "handlePan:"));

    m_initializeQueue = NSOperationQueue::alloc()->init();
    m_initializeQueue->setSuspended(true);
    // Strong: the view stays until its field is drawn. The reference moves on to the main queue, where views die.
    m_initializeQueue->addOperationWithBlock([view = self(this)]() mutable {
        view->createColorMapLayer();
        dispatch_async(dispatch_get_main_queue(), [view = std::move(view)] { view->installColorMap(); });
    });
}

TileGrid ZKColorMapView::grid() const {
    return {frame().size, floatValue(m_tileSize), floatValue(m_saturationUpperLimit)};
}

// Where the cursor stands centred on the first tile.
CGPoint ZKColorMapView::cursorOrigin() const {
    const double tile = floatValue(m_tileSize);
    const CGSize cursor = ZKColorCursor::cursorSize();
    return {(tile - cursor.width) / 2, (tile - cursor.height) / 2};
}

void ZKColorMapView::layoutSubviews() {
    UIControl::layoutSubviews();
    updateColorCursor();
    m_didLayoutSubview = true;
    gateInitializeQueue();
}

CGSize ZKColorMapView::intrinsicContentSize() const { return grid().fieldSize(); }

void ZKColorMapView::setSaturationUpperLimit(std::optional<NSNumber> limit) {
    m_saturationUpperLimit = limit;
    gateInitializeQueue();
}

void ZKColorMapView::setTileSize(std::optional<NSNumber> tileSize) {
    m_tileSize = tileSize;
    gateInitializeQueue();
    if (!m_colorCursor) return;
    // Untransformed: the frame of a cursor that was moved onto its tile is not the one that it was made with.
    m_colorCursor->setTransform(CGAffineTransformIdentity);
    m_colorCursor->setFrame({cursorOrigin(), m_colorCursor->frame().size});
    if (m_didLayoutSubview) updateColorCursor();
}

void ZKColorMapView::setBrightness(double brightness) {
    m_brightness = brightness;
    CATransaction::begin();
    CATransaction::setDisableActions(true);
    if (const auto layer = colorMapLayer()) layer->setOpacity(brightness);
    CATransaction::commit();
}

void ZKColorMapView::setColor(std::shared_ptr<UIColor> color) {
    m_color = std::move(color);
    updateColorCursor();
}

void ZKColorMapView::updateColorCursor() {
    if (!m_colorCursor) return;
    double hue = 0;
    double saturation = 0;
    if (m_color) m_color->getHue_saturation_brightness_alpha(&hue, &saturation, nullptr, nullptr);
    const TileGrid tiles = grid();
    const CGPoint origin = tiles.tileRect(tiles.tileForColor(hue, saturation)).origin;
    m_colorCursor->setColor(m_color);
    m_colorCursor->setTransform(CGAffineTransformMakeTranslation(origin.x, origin.y));
}
