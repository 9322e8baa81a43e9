#include "kit/uikit/ScrollIndicator.h"

#include "kit/quartz/geometry.h"
#include "kit/uikit/appearance.h"
#include "platform/quartz/CATransaction.h"
#include "platform/uikit/UIView.h"

#include <algorithm>

namespace seat {

namespace {

constexpr double thickness = 3;
constexpr double margin = 3;
constexpr double leastLength = 24;
constexpr double fadeSeconds = 0.4;

} // namespace

void ScrollIndicator::show(CALayer& container, CGRect bounds, ScrollRange range) {
    const double content = range.most - range.least + range.extent;
    if (!(range.most > range.least) || !(content > 0)) return;
    CATransaction::begin();
    CATransaction::setDisableActions(true);
    if (!m_bar) {
        m_bar = CALayer::layer();
        m_bar->setBackgroundColor(appearance::indicatorColor()->CGColor());
        m_bar->setCornerRadius(thickness / 2);
    }
    if (container.sublayers().empty() || container.sublayers().back() != m_bar) {
        m_bar->removeFromSuperlayer();
        container.addSublayer(m_bar);
    }
    const double track = bounds.size.height - 2 * margin;
    // Pulled beyond the end, the bar is squeezed.
    const double offset = bounds.origin.y;
    const double beyond = std::abs(offset - range.clamp(offset));
    const double length = std::max(track * range.extent / (content + beyond), leastLength);
    const double fraction = (range.clamp(offset) - range.least) / (range.most - range.least);
    m_bar->setFrame(CGRectMake(CGRectGetMaxX(bounds) - margin - thickness,
                               bounds.origin.y + margin + (track - length) * fraction, thickness, length));
    m_bar->setOpacity(1);
    CATransaction::commit();
}

void ScrollIndicator::fade() {
    if (!m_bar || m_bar->opacity() == 0) return;
    UIView::animateWithDuration_animations(fadeSeconds, [bar = m_bar] { bar->setOpacity(0); });
}

} // namespace seat
