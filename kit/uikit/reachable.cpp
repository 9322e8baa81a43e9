#include "kit/uikit/reachable.h"

#include "kit/quartz/geometry.h"
#include "kit/uikit/ScrollInternals.h"
#include "kit/uikit/UIWindow.h"
#include "kit/uikit/ViewInternals.h"
#include "kit/uikit/focus_order.h"
#include "kit/uikit/visible_rect.h"

namespace seat {

namespace {

constexpr double samples[] = {0.5, 0.1, 0.9}; // of the width and the height; a bar may cover a part

// The subview of `outer` that is or holds `inner`; nullptr for `outer` itself.
const UIView* branch(const UIView& outer, const UIView& inner) {
    const UIView* at = &inner;
    if (at == &outer) return nullptr;
    while (ViewInternals::state(*at).superview != &outer) at = ViewInternals::state(*at).superview;
    return at;
}

bool covers(const UIView& subview, const UIView& outer) {
    const CGRect frame = subview.frame();
    return CGRectEqualToRect(CGRectIntersection(frame, outer.bounds()), outer.bounds());
}

// A finger on `view` gets to it, or to what it holds beside a subview that covers all of it.
bool takesFingers(UIWindow& window, const UIView& view, const UIView& target) {
    const CGRect rect = visibleRectInWindow(view);
    if (CGRectIsEmpty(rect)) return false;
    for (const double down : samples)
        for (const double across : samples) {
            const CGPoint point{rect.origin.x + rect.size.width * across, rect.origin.y + rect.size.height * down};
            const auto hit = window.hitTest_withEvent(point, nullptr);
            if (!hit || !hit->isDescendantOfView(&view)) continue;
            const UIView* const held = branch(view, *hit);
            if (&view == &target || !held || target.isDescendantOfView(held) || !covers(*held, view)) return true;
        }
    return false;
}

} // namespace

bool isReachable(const UIView& view) {
    const auto window = view.window();
    if (!window || !view.isDescendantOfView(frontScope(*window).get())) return false;
    if (takesFingers(*window, view, view)) return true;
    for (const UIView* at = &view; at; at = ViewInternals::state(*at).superview)
        if (const auto* const scroll = dynamic_cast<const UIScrollView*>(at))
            return ScrollInternals::canScroll(*scroll) && takesFingers(*window, *scroll, view);
    return false;
}

bool isHeld(const UIView& view) {
    const auto window = view.window();
    if (!window || !view.isDescendantOfView(frontScope(*window).get()) || !view.isUserInteractionEnabled())
        return false;
    bool isHeld = false;
    for (const UIView* at = &view; at; at = ViewInternals::state(*at).superview) {
        if (!ViewInternals::isVisible(*at)) return false;
        isHeld |= !at->isUserInteractionEnabled();
    }
    return isHeld;
}

} // namespace seat
