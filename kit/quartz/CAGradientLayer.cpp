#include "platform/quartz/CAGradientLayer.h"

#include "kit/quartz/LayerInternals.h"
#include "kit/quartz/repaint.h"

#include <algorithm>

NS_CLASS_IMPLEMENTATION(CAGradientLayer, CALayer)

CAGradientLayer::CAGradientLayer() { LayerInternals::state(*this).gradient = this; }
CAGradientLayer::~CAGradientLayer() = default;

std::shared_ptr<CAGradientLayer> CAGradientLayer::init() { return self(this); }
std::shared_ptr<CAGradientLayer> CAGradientLayer::initWithLayer(const std::shared_ptr<CALayer>&) { return self(this); }

void CAGradientLayer::setColors(std::vector<CGColorRef> colors) {
    const bool changes = !std::ranges::equal(m_colors, colors, seat::isSameColor);
    m_colors = std::move(colors);
    if (changes) seat::reportRepaint(*this, seat::Reach::Layer);
}

void CAGradientLayer::setStartPoint(CGPoint point) {
    m_startPoint = point;
    seat::reportRepaint(*this, seat::Reach::Layer);
}

void CAGradientLayer::setEndPoint(CGPoint point) {
    m_endPoint = point;
    seat::reportRepaint(*this, seat::Reach::Layer);
}
