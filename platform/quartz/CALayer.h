#pragma once

#include "platform/quartz/CATransform3D.h"
#include "platform/quartz/CGColor.h"
#include "platform/quartz/CGContext.h"
#include "platform/quartz/CGImage.h"
#include "platform/runtime/NSObject.h"

#include <memory>
#include <vector>

class CALayer;

// Draws a layer's own content, between its background and its sublayers, in the layer's coordinates. Called on the main
// thread while a frame is painted; the context is valid during the call.
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
    struct Internals; // the seat's way in, opaque to everybody else
    static constexpr bool diesOnMainThread = true;
    ~CALayer() override;

    // A layer without size, look or sublayers; opacity 1.
    static std::shared_ptr<CALayer> layer() { return alloc()->init(); }
    std::shared_ptr<CALayer> init();
    // A fresh layer: no geometry or look is taken over from the other, which may be nil.
    std::shared_ptr<CALayer> initWithLayer(const std::shared_ptr<CALayer>& layer);

    // In the superlayer's coordinates, in points. `frame` is derived from bounds, position (of the centre) and
    // transform; set while the transform is the identity it reads back unchanged, to the bit. The bounds' origin is
    // what stands at the layer's top left corner: another one scrolls what is inside. Coordinates that are no numbers
    // are kept and paint nothing.
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

    // Points. At more than half the shorter edge the ends are round; a border lies inside the bounds, over the
    // sublayers. nil colours, and widths that are not above 0, paint nothing.
    double cornerRadius() const;
    void setCornerRadius(double radius);
    double borderWidth() const;
    void setBorderWidth(double width);
    const CGColorRef& borderColor() const;
    void setBorderColor(CGColorRef color);
    const CGColorRef& backgroundColor() const;
    void setBackgroundColor(CGColorRef color);
    // 0 to 1, for the layer with all that it holds, painted as one picture.
    double opacity() const;
    void setOpacity(double opacity);
    // With all that it holds.
    bool isHidden() const;
    void setHidden(bool hidden);
    // Clips sublayers to the bounds (rounded by the corner radius).
    bool masksToBounds() const;
    void setMasksToBounds(bool masks);
    // Stretched over the bounds; an image of exactly the bounds' pixels is drawn pixel for pixel.
    const CGImageRef& contents() const;
    void setContents(CGImageRef contents);

    const std::vector<std::shared_ptr<CALayer>>& sublayers() const;
    // nil while the layer stands in none. Non-owning.
    CALayer* superlayer() const;
    // Sublayers are painted in their order, the last in front. Adding a layer takes it from where it was; nil, and a
    // layer that this one stands in, are ignored.
    void addSublayer(const std::shared_ptr<CALayer>& layer);
    // An index beyond the end appends.
    void insertSublayer_atIndex(const std::shared_ptr<CALayer>& layer, unsigned index);
    void removeFromSuperlayer();

    // Non-owning; who sets it takes it back before it dies. nil draws nothing.
    CALayerDelegate* delegate() const;
    void setDelegate(CALayerDelegate* delegate);

    // Asks for a repaint of the layer with the next frame, of the rectangle in its own coordinates; nothing while the
    // layer stands in no tree that is shown.
    void setNeedsDisplay();
    void setNeedsDisplayInRect(CGRect rect);

protected:
    CALayer();

private:
    struct State;
    std::unique_ptr<State> m_layer;
};
