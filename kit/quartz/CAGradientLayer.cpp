#include "platform/quartz/CAGradientLayer.h"

#include "host/quartz/layer_internals.h"
#include "host/quartz/repaint.h"

#include <algorithm>

NS_CLASS_IMPLEMENTATION(CAGradientLayer, CALayer)

CAGradientLayer::CAGradientLayer() { LayerInternals::state(*this).gradient = this; }
CAGradientLayer::~CAGradientLayer() = default;

std::shared_ptr<CAGradientLayer> CAGradientLayer::init() { return self(this); }
std::shared_ptr<CAGradientLayer> CAGradientLayer::initWithLayer(const std::shared_ptr<CALayer>&) { return self(this); }

void CAGradientLayer::setColors(std::vector<CGColorRef> colors) {
    const bool changes = !std::ranges::equal(m_colors, colors, host::isSameColor);
    m_colors = std::move(colors);
    if (changes) host::reportRepaint(*this, host::Reach::Layer);
}

void CAGradientLayer::setStartPoint(CGPoint point) {
    m_startPoint = point;
    host::reportRepaint(*this, host::Reach::Layer);
}

void CAGradientLayer::setEndPoint(CGPoint point) {
    m_endPoint = point;
    host::reportRepaint(*this, host::Reach::Layer);
}
