#include "platform/quartz/CAGradientLayer.h"

#include "host/quartz/layer_internals.h"
#include "host/quartz/repaint.h"

NS_CLASS_IMPLEMENTATION(CAGradientLayer, CALayer)

CAGradientLayer::CAGradientLayer() { LayerInternals::state(*this).gradient = this; }
CAGradientLayer::~CAGradientLayer() = default;

std::shared_ptr<CAGradientLayer> CAGradientLayer::init() { return self(this); }
std::shared_ptr<CAGradientLayer> CAGradientLayer::initWithLayer(const std::shared_ptr<CALayer>&) { return self(this); }

void CAGradientLayer::setColors(std::vector<CGColorRef> colors) {
    m_colors = std::move(colors);
    host::reportRepaint(*this, host::Reach::Layer);
}

void CAGradientLayer::setStartPoint(CGPoint point) {
    m_startPoint = point;
    host::reportRepaint(*this, host::Reach::Layer);
}

void CAGradientLayer::setEndPoint(CGPoint point) {
    m_endPoint = point;
    host::reportRepaint(*this, host::Reach::Layer);
}
