#include "kit/uikit/focus_ring.h"

#include "kit/quartz/geometry.h"
#include "kit/uikit/UIWindow.h"
#include "kit/uikit/appearance.h"
#include "kit/uikit/visible_rect.h"

#include <algorithm>
#include <cmath>

namespace seat {

namespace {

constexpr double thickness = 2;
constexpr double gap = 2;                 // between a small view and its ring
constexpr double widestRingOutside = 120; // wider views have neighbours, or fill a panel: their ring stands inside

bool ringStandsInside(const UIView& view) {
    // One with margins of its own has room around it.
    const bool hasMargins = !CGRectEqualToRect(alignmentBounds(view), view.bounds());
    return !hasMargins && view.bounds().size.width > widestRingOutside;
}

} // namespace

std::shared_ptr<CALayer> makeFocusRing() {
    const auto ring = CALayer::layer();
    ring->setBorderWidth(thickness);
    ring->setBorderColor(appearance::focusRingColor()->CGColor());
    return ring;
}

CGRect focusRingRect(const UIView& view) {
    const CGRect whole = view.convertRect_toView(alignmentBounds(view), nullptr);
    const CGRect visible = CGRectIntersection(visibleRectInWindow(view), whole);
    if (CGRectIsEmpty(visible)) return CGRectNull;
    const double outset = ringStandsInside(view) ? 0 : gap + thickness;
    // Beside what is scrolled or clipped away there is no ring either.
    CGRect ring = CGRectIntersection(CGRectInset(whole, -outset, -outset), CGRectInset(visible, -outset, -outset));
    if (const auto window = view.window()) ring = CGRectIntersection(ring, window->bounds());
    if (CGRectIsEmpty(ring)) return CGRectNull;
    const CGPoint corner{std::floor(ring.origin.x), std::floor(ring.origin.y)};
    return {corner, {std::ceil(CGRectGetMaxX(ring)) - corner.x, std::ceil(CGRectGetMaxY(ring)) - corner.y}};
}

double focusRingRadius(const UIView& view) {
    const double own = view.layer()->cornerRadius();
    if (ringStandsInside(view)) return own > 0 ? own : 8;
    return own > 0 ? own + gap + thickness : 6;
}

} // namespace seat
