#pragma once

#include "platform/quartz/CATransform3D.h"
#include "platform/quartz/CGColor.h"
#include "platform/quartz/CGContext.h"
#include "platform/quartz/CGImage.h"
#include "platform/runtime/NSObject.h"

#include <memory>
#include <vector>

class CALayer;
struct LayerInternals;
namespace seat {
class LayerHost;
}

// Draws a layer's own content, between its background and its sublayers.
class CALayerDelegate {
public:
    virtual ~CALayerDelegate() = default;
    virtual void drawLayer_inContext(CALayer& layer, CGContextRef context) = 0;
};

// A rectangle on screen: background, contents, the delegate's drawing, sublayers, border, in this order from the back.
// Property values change at once; inside an animation block what is drawn follows over time. A layer that stands in no
// tree may be made and set up on any thread; in a tree, main thread only.
class CALayer : public NSObject {
    NS_CLASS(CALayer)
public:
    static constexpr bool diesOnMainThread = true;
    ~CALayer() override;

    static std::shared_ptr<CALayer> layer() { return alloc()->init(); }
    std::shared_ptr<CALayer> init();
    // A fresh layer: no geometry or look is taken over from the other, which may be nil.
    std::shared_ptr<CALayer> initWithLayer(const std::shared_ptr<CALayer>& layer);

    // `frame` is derived from bounds, position (of the centre) and transform; set only while the transform is the
    // identity does it read back unchanged.
    CGRect frame() const;
    void setFrame(CGRect frame);
    CGRect bounds() const;
    void setBounds(CGRect bounds);
    CGPoint position() const;
    void setPosition(CGPoint position);
    const CATransform3D& transform() const;
    void setTransform(const CATransform3D& transform);
    CGAffineTransform affineTransform() const;
    void setAffineTransform(CGAffineTransform transform);

    double cornerRadius() const;
    void setCornerRadius(double radius);
    double borderWidth() const;
    void setBorderWidth(double width);
    const CGColorRef& borderColor() const;
    void setBorderColor(CGColorRef color);
    const CGColorRef& backgroundColor() const;
    void setBackgroundColor(CGColorRef color);
    // 0 to 1, for the layer with all that it holds.
    double opacity() const;
    void setOpacity(double opacity);
    bool isHidden() const;
    void setHidden(bool hidden);
    // Clips sublayers to the bounds (rounded by the corner radius).
    bool masksToBounds() const;
    void setMasksToBounds(bool masks);
    // Stretched over the bounds; an image of exactly the bounds' pixels is drawn pixel for pixel.
    const CGImageRef& contents() const;
    void setContents(CGImageRef contents);

    const std::vector<std::shared_ptr<CALayer>>& sublayers() const;
    CALayer* superlayer() const; // non-owning
    // Adding a layer takes it from where it was. nil is ignored.
    void addSublayer(const std::shared_ptr<CALayer>& layer);
    // An index beyond the end appends.
    void insertSublayer_atIndex(const std::shared_ptr<CALayer>& layer, unsigned index);
    void removeFromSuperlayer();

    CALayerDelegate* delegate() const; // non-owning
    void setDelegate(CALayerDelegate* delegate);

    // Asks for a repaint of the layer.
    void setNeedsDisplay();
    void setNeedsDisplayInRect(CGRect rect);

    // Set on the root layer by whoever shows the tree; non-owning, nullptr when it is shown no more.
    void setHost(seat::LayerHost* host);

protected:
    CALayer();

private:
    friend struct LayerInternals;
    struct State;
    std::unique_ptr<State> m_layer;
};
