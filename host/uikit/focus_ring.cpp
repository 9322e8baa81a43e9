#include "host/uikit/focus_ring.h"

#include "host/uikit/visible_rect.h"
#include "platform/uikit/UIColor.h"
#include "platform/uikit/UIWindow.h"

#include <algorithm>
#include <cmath>

namespace host {

namespace {

constexpr double thickness = 2;
constexpr double gap = 2; // between a small view and its ring

} // namespace

std::shared_ptr<CALayer> makeFocusRing() {
    const auto ring = CALayer::layer();
    ring->setBorderWidth(thickness);
    ring->setBorderColor(UIColor::colorWithRed_green_blue_alpha(0, 0.478, 1, 1)->CGColor());
    return ring;
}

CGRect focusRingRect(const UIView& view) {
    const CGRect visible = visibleRectInWindow(view);
    if (CGRectIsEmpty(visible)) return CGRectNull;
    const auto window = view.window();
    CGRect ring = CGRectInset(view.convertRect_toView(view.bounds(), nullptr), -gap - thickness, -gap - thickness);
    // Round a row, or a view at the edge, the ring stands inside.
    const CGRect room = window ? window->bounds() : ring;
    const double left = std::max(ring.origin.x, room.origin.x);
    const double right = std::min(CGRectGetMaxX(ring), CGRectGetMaxX(room));
    const double slack = 2 * (gap + thickness);
    const double top = std::max(ring.origin.y, visible.origin.y - slack);
    const double bottom = std::min(CGRectGetMaxY(ring), CGRectGetMaxY(visible) + slack);
    ring = {{std::floor(left), std::floor(top)},
            {std::ceil(right) - std::floor(left), std::ceil(bottom) - std::floor(top)}};
    return ring;
}

double focusRingRadius(const UIView& view) {
    const double own = view.layer()->cornerRadius();
    return own > 0 ? own + gap + thickness : 6;
}

} // namespace host
