// Who is hit, in whose coordinates, and whose gestures are listened for.

#include "kit/quartz/geometry.h"
#include "kit/uikit/GestureInternals.h"
#include "kit/uikit/ViewInternals.h"
#include "platform/uikit/UIGestureRecognizer.h"

#include <algorithm>
#include <ranges>

namespace {

constexpr double leastVisibleAlpha = 0.01;

CGPoint middle(CGRect rect) { return {CGRectGetMidX(rect), CGRectGetMidY(rect)}; }

// A view that is not transformed only shifts points; the way over its centre would round them.
std::optional<CGPoint> exactShift(const UIView& view) {
    if (view.transform() != CGAffineTransformIdentity) return std::nullopt;
    const CGPoint inside = view.bounds().origin;
    const CGPoint outside = view.frame().origin;
    return CGPoint{outside.x - inside.x, outside.y - inside.y};
}

} // namespace

CGPoint ViewInternals::toSuperview(const UIView& view, CGPoint point) {
    if (const auto shift = exactShift(view)) return {point.x + shift->x, point.y + shift->y};
    const CGPoint anchor = middle(view.bounds());
    const CGPoint turned = CGPointApplyAffineTransform({point.x - anchor.x, point.y - anchor.y}, view.transform());
    return {turned.x + view.center().x, turned.y + view.center().y};
}

CGPoint ViewInternals::fromSuperview(const UIView& view, CGPoint point) {
    if (const auto shift = exactShift(view)) return {point.x - shift->x, point.y - shift->y};
    const CGPoint anchor = middle(view.bounds());
    const CGPoint turned = CGPointApplyAffineTransform({point.x - view.center().x, point.y - view.center().y},
                                                       CGAffineTransformInvert(view.transform()));
    return {turned.x + anchor.x, turned.y + anchor.y};
}

bool ViewInternals::isVisible(const UIView& view) { return !view.isHidden() && view.alpha() >= leastVisibleAlpha; }

bool UIView::isUserInteractionEnabled() const { return m_view->userInteractionEnabled; }
void UIView::setUserInteractionEnabled(bool enabled) { m_view->userInteractionEnabled = enabled; }
bool UIView::pointInside_withEvent(CGPoint point, UIEvent*) const { return CGRectContainsPoint(bounds(), point); }

std::shared_ptr<UIView> UIView::hitTest_withEvent(CGPoint point, UIEvent* event) {
    if (!m_view->userInteractionEnabled || !ViewInternals::isVisible(*this)) return nullptr;
    if (!pointInside_withEvent(point, event)) return nullptr;
    for (const auto& subview : std::vector(m_view->subviews) | std::views::reverse)
        if (auto hit = subview->hitTest_withEvent(ViewInternals::fromSuperview(*subview, point), event)) return hit;
    return self(this);
}

void UIView::addGestureRecognizer(const std::shared_ptr<UIGestureRecognizer>& recognizer) {
    if (!recognizer) return;
    if (const auto old = recognizer->view()) {
        if (old.get() == this) return;
        std::erase(old->m_view->recognizers, recognizer);
        GestureInternals::cancel(*recognizer);
    }
    GestureInternals::setView(*recognizer, self(this));
    m_view->recognizers.push_back(recognizer);
}

const std::vector<std::shared_ptr<UIGestureRecognizer>>& UIView::gestureRecognizers() const {
    return m_view->recognizers;
}

CGPoint UIView::convertPoint_toView(CGPoint point, const UIView* view) const {
    for (const UIView* at = this; at->m_view->superview; at = at->m_view->superview)
        point = ViewInternals::toSuperview(*at, point);
    if (!view) return point;
    std::vector<const UIView*> way; // from the view up to below its root
    for (const UIView* at = view; at->m_view->superview; at = at->m_view->superview) way.push_back(at);
    for (const UIView* at : way | std::views::reverse) point = ViewInternals::fromSuperview(*at, point);
    return point;
}

CGPoint UIView::convertPoint_fromView(CGPoint point, const UIView* view) const {
    return (view ? *view : ViewInternals::root(*this)).convertPoint_toView(point, this);
}

CGRect UIView::convertRect_toView(CGRect rect, const UIView* view) const {
    const CGPoint corners[] = {
        convertPoint_toView(rect.origin, view),
        convertPoint_toView({CGRectGetMaxX(rect), CGRectGetMinY(rect)}, view),
        convertPoint_toView({CGRectGetMinX(rect), CGRectGetMaxY(rect)}, view),
        convertPoint_toView({CGRectGetMaxX(rect), CGRectGetMaxY(rect)}, view),
    };
    const auto [left, right] = std::ranges::minmax(corners | std::views::transform(&CGPoint::x));
    const auto [top, bottom] = std::ranges::minmax(corners | std::views::transform(&CGPoint::y));
    return {{left, top}, {right - left, bottom - top}};
}
