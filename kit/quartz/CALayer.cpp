#include "platform/quartz/CALayer.h"

#include "kit/quartz/LayerInternals.h"
#include "kit/quartz/geometry.h"
#include "kit/quartz/layer_change.h"
#include "kit/quartz/repaint.h"

#include <cmath>

using seat::LayerValues;
using seat::Reach;

NS_CLASS_IMPLEMENTATION(CALayer, NSObject)

CALayer::CALayer() : m_layer(std::make_unique<State>()) {}

CALayer::~CALayer() {
    LayerInternals::cancelAnimations(*this);
    for (const auto& sublayer : m_layer->sublayers) sublayer->m_layer->superlayer = nullptr;
}

std::shared_ptr<CALayer> CALayer::init() { return self(this); }
std::shared_ptr<CALayer> CALayer::initWithLayer(const std::shared_ptr<CALayer>&) { return self(this); }

// Geometry

CGRect CALayer::frame() const {
    if (m_layer->exactFrame) return *m_layer->exactFrame;
    return CGRectApplyAffineTransform(m_layer->model.bounds, seat::transformToSuperlayer(m_layer->model));
}

void CALayer::setFrame(CGRect frame) {
    const CGAffineTransform t = affineTransform();
    CGRect bounds = m_layer->model.bounds;
    if (t.a == 1 && t.b == 0 && t.c == 0 && t.d == 1) {
        bounds.size = frame.size;
    } else {
        // The size of which the transform makes a rectangle that fills the frame.
        const double a = std::abs(t.a), b = std::abs(t.b), c = std::abs(t.c), d = std::abs(t.d);
        const double determinant = a * d - b * c;
        if (determinant != 0)
            bounds.size = {(d * frame.size.width - c * frame.size.height) / determinant,
                           (a * frame.size.height - b * frame.size.width) / determinant};
    }
    const CGPoint position{CGRectGetMidX(frame) - t.tx, CGRectGetMidY(frame) - t.ty};
    seat::changeGeometry(*this, bounds, position);
    if (t == CGAffineTransformIdentity) m_layer->exactFrame = frame;
}

CGRect CALayer::bounds() const { return m_layer->model.bounds; }
void CALayer::setBounds(CGRect bounds) { seat::changeGeometry(*this, bounds, m_layer->model.position); }
CGPoint CALayer::position() const { return m_layer->model.position; }
void CALayer::setPosition(CGPoint position) { seat::changeGeometry(*this, m_layer->model.bounds, position); }
const CATransform3D& CALayer::transform() const { return m_layer->model.transform; }

void CALayer::setTransform(const CATransform3D& transform) {
    if (!(transform == m_layer->model.transform)) m_layer->exactFrame.reset();
    seat::change(*this, &LayerValues::transform, transform, Reach::Tree);
}

CGAffineTransform CALayer::affineTransform() const { return CATransform3DGetAffineTransform(m_layer->model.transform); }
void CALayer::setAffineTransform(CGAffineTransform transform) {
    setTransform(CATransform3DMakeAffineTransform(transform));
}

// Look

double CALayer::cornerRadius() const { return m_layer->model.cornerRadius; }
void CALayer::setCornerRadius(double radius) {
    seat::change(*this, &LayerValues::cornerRadius, radius, m_layer->masksToBounds ? Reach::Tree : Reach::Layer);
}
double CALayer::borderWidth() const { return m_layer->model.borderWidth; }
void CALayer::setBorderWidth(double width) { seat::change(*this, &LayerValues::borderWidth, width, Reach::Layer); }
const CGColorRef& CALayer::borderColor() const { return m_layer->model.borderColor; }
void CALayer::setBorderColor(CGColorRef color) {
    seat::change(*this, &LayerValues::borderColor, std::move(color), Reach::Layer);
}
const CGColorRef& CALayer::backgroundColor() const { return m_layer->model.backgroundColor; }
void CALayer::setBackgroundColor(CGColorRef color) {
    seat::change(*this, &LayerValues::backgroundColor, std::move(color), Reach::Layer);
}
double CALayer::opacity() const { return m_layer->model.opacity; }
void CALayer::setOpacity(double opacity) { seat::change(*this, &LayerValues::opacity, opacity, Reach::Tree); }

bool CALayer::isHidden() const { return m_layer->hidden; }
void CALayer::setHidden(bool hidden) {
    if (hidden == m_layer->hidden) return;
    const seat::RepaintAround repaint(*this, Reach::Tree);
    m_layer->hidden = hidden;
}

bool CALayer::masksToBounds() const { return m_layer->masksToBounds; }
void CALayer::setMasksToBounds(bool masks) {
    if (masks == m_layer->masksToBounds) return;
    const seat::RepaintAround repaint(*this, Reach::Tree);
    m_layer->masksToBounds = masks;
}

const CGImageRef& CALayer::contents() const { return m_layer->contents; }
void CALayer::setContents(CGImageRef contents) {
    if (contents == m_layer->contents) return;
    m_layer->contents = std::move(contents);
    seat::reportRepaint(*this, Reach::Layer);
}

CALayerDelegate* CALayer::delegate() const { return m_layer->delegate; }
void CALayer::setDelegate(CALayerDelegate* delegate) { m_layer->delegate = delegate; }

void CALayer::setNeedsDisplay() { seat::reportRepaint(*this, Reach::Layer); }
void CALayer::setNeedsDisplayInRect(CGRect rect) {
    seat::reportRepaint(*this, CGRectIntersection(rect, LayerInternals::shown(*this).bounds));
}
