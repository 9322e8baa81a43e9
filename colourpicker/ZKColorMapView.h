#pragma once

#include "colourpicker/TileGrid.h"
#include "colourpicker/part_protocols.h"
#include "platform/runtime/AtomicReference.h"
#include "platform/uikit/UIControl.h"

#include <memory>
#include <optional>
#include <utility>

class NSOperationQueue;
class UIImage;
class UIPanGestureRecognizer;
class UITapGestureRecognizer;
class ZKColorCursor;

// The hue and saturation field: hue from left to right, saturation falling from top to bottom, both in square tiles;
// brightness is set from outside and shown by fading the field towards black. Taps and drags choose a tile.
//
// The field is drawn once, on a worker, when the view has been laid out and both numbers are set; until then the view
// is invisible. It is never drawn again. Main thread only, but for the two layer properties.
class ZKColorMapView final : public UIControl, public protocol::ZKColorMapView {
    NS_CLASS(ZKColorMapView)
public:
    ~ZKColorMapView() override;

    static std::shared_ptr<ZKColorMapView> colorMapWithFrame(CGRect frame);
    static std::shared_ptr<ZKColorMapView> colorMapWithFrame_saturationUpperLimit(CGRect frame, double limit);

    // The operation that draws the field holds the view: one that never gets to draw it lives for ever.
    std::shared_ptr<ZKColorMapView> init();
    std::shared_ptr<ZKColorMapView> initWithFrame_saturationUpperLimit(CGRect frame, double limit);
    // Without a limit for the saturation.
    std::shared_ptr<ZKColorMapView> initWithCoder(const std::shared_ptr<NSCoder>& coder);

    std::shared_ptr<UIColor> color() override { return m_color; }
    // Moves and recolours the cursor; sends no event.
    void setColor(std::shared_ptr<UIColor> color) override;
    double brightness() const override { return m_brightness; }
    // Leaves the colour as it is.
    void setBrightness(double brightness) override;
    // How much saturation the bottom row has lost: 1 makes it white. Held in single precision.
    std::optional<NSNumber> saturationUpperLimit() const override { return m_saturationUpperLimit; }
    void setSaturationUpperLimit(std::optional<NSNumber> limit) override;
    // Edge of a tile in points. Once the field is drawn, a new size moves the cursor and changes what touches mean, not
    // what is seen.
    std::optional<NSNumber> tileSize() const { return m_tileSize; }
    void setTileSize(std::optional<NSNumber> tileSize);

    // nil until drawn. A field that is set before is shown as it is. Any thread.
    std::shared_ptr<CALayer> colorMapLayer() const { return m_colorMapLayer.load(); }
    void setColorMapLayer(std::shared_ptr<CALayer> layer) { m_colorMapLayer = std::move(layer); }
    std::shared_ptr<CALayer> colorMapBackgroundLayer() const { return m_colorMapBackgroundLayer.load(); }
    void setColorMapBackgroundLayer(std::shared_ptr<CALayer> layer) { m_colorMapBackgroundLayer = std::move(layer); }
    const std::shared_ptr<CALayer>& lineLayer() const { return m_lineLayer; }
    const std::shared_ptr<ZKColorCursor>& colorCursor() const { return m_colorCursor; }

    // The pictures of the two layers, in whole tiles; nil without any. Any thread.
    static std::shared_ptr<UIImage> colorMapImageWithSize_tileSize_saturationUpperLimit(CGSize size, double tileSize,
                                                                                        double limit);
    static std::shared_ptr<UIImage> backgroundImageWithSize_tileSize(CGSize size, double tileSize);

    void layoutSubviews() override;
    // The frame, cut to whole tiles.
    CGSize intrinsicContentSize() const override;

    // Assistive technology and the keyboard: a step goes to the next tile, or over a tenth of the field.
    bool canBecomeFocused() const override;
    UIAccessibilityRole accessibilityRole() const override;
    std::string accessibilityLabel() const override;
    std::string accessibilityValue() const override;
    bool accessibilityActivate() override;
    bool accessibilityStep(UIAccessibilityDirection direction, UIAccessibilityStep step) override;

private:
    ZKColorMapView();
    void _init();
    TileGrid grid() const;
    CGPoint cursorOrigin() const;

    bool isAbleToCreateColorMap() const;
    void gateInitializeQueue();
    void createColorMapLayer();
    void installColorMap();

    void handleTap(const std::shared_ptr<UITapGestureRecognizer>& recognizer);
    void handlePan(const std::shared_ptr<UIPanGestureRecognizer>& recognizer);
    void tappedAtPoint(CGPoint point);
    void pannedToPoint_ended(CGPoint point, bool ended);
    void panLifted_ended(bool ended);
    void setCursorEditing(bool editing);
    void update_sendUpdates(CGPoint point, bool sendUpdates);
    void updateColorCursor();

    std::shared_ptr<UIColor> m_color;
    double m_brightness = 0;
    std::optional<NSNumber> m_saturationUpperLimit;
    std::shared_ptr<ZKColorCursor> m_colorCursor;
    std::shared_ptr<NSOperationQueue> m_initializeQueue;
    bool m_didLayoutSubview = false;
    std::shared_ptr<CALayer> m_lineLayer;
    std::optional<NSNumber> m_tileSize;
    AtomicReference<CALayer> m_colorMapLayer;
    AtomicReference<CALayer> m_colorMapBackgroundLayer;
    AtomicReference<const TileGrid> m_gridToDraw; // as it was when the queue was last let go: what the worker draws
};
