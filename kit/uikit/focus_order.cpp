#include "kit/uikit/focus_order.h"

#include "kit/uikit/UIWindow.h"
#include "kit/uikit/ViewInternals.h"
#include "kit/uikit/reachable.h"

#include <algorithm>
#include <ranges>

namespace seat {

namespace {

std::shared_ptr<UIView> frontModalView(const std::shared_ptr<UIView>& view) {
    if (!ViewInternals::isVisible(*view)) return nullptr;
    for (const auto& subview : view->subviews() | std::views::reverse)
        if (auto modal = frontModalView(subview)) return modal;
    return view->accessibilityViewIsModal() ? view : nullptr;
}

// Siblings whose vertical middles lie within each other's height stand in one line.
bool readsBefore(const UIView& a, const UIView& b) {
    const CGRect first = a.frame();
    const CGRect second = b.frame();
    const double middle = CGRectGetMidY(second);
    const double otherMiddle = CGRectGetMidY(first);
    const bool inOneLine = (middle > CGRectGetMinY(first) && middle < CGRectGetMaxY(first)) &&
                           (otherMiddle > CGRectGetMinY(second) && otherMiddle < CGRectGetMaxY(second));
    return inOneLine ? first.origin.x < second.origin.x : otherMiddle < middle;
}

// Insertion keeps equal views in the order of the tree, and does not mind that "in one line" is no strict order.
std::vector<std::shared_ptr<UIView>> inReadingOrder(const std::vector<std::shared_ptr<UIView>>& views) {
    std::vector<std::shared_ptr<UIView>> ordered;
    for (const auto& view : views) {
        auto at = ordered.end();
        while (at != ordered.begin() && readsBefore(*view, **std::prev(at))) --at;
        ordered.insert(at, view);
    }
    return ordered;
}

void collect(const std::shared_ptr<UIView>& view, std::vector<std::shared_ptr<UIView>>& found) {
    if (!ViewInternals::isVisible(*view) || !view->isUserInteractionEnabled()) return;
    if (view->canBecomeFocused()) {
        if (isReachable(*view)) found.push_back(view);
        return;
    }
    for (const auto& subview : inReadingOrder(view->subviews())) collect(subview, found);
}

} // namespace

std::shared_ptr<UIView> frontScope(const UIWindow& window) {
    for (const auto& subview : window.subviews() | std::views::reverse)
        if (auto modal = frontModalView(subview)) return modal;
    return std::const_pointer_cast<UIView>(std::static_pointer_cast<const UIView>(window.shared_from_this()));
}

std::vector<std::shared_ptr<UIView>> focusableViews(const UIView& scope) {
    std::vector<std::shared_ptr<UIView>> found;
    for (const auto& subview : inReadingOrder(scope.subviews())) collect(subview, found);
    return found;
}

std::shared_ptr<UIView> reachableFocus(const UIWindow& window) {
    auto focused = window.focusedView();
    return focused && isReachable(*focused) ? focused : nullptr;
}

std::shared_ptr<UIView> nextFocus(const UIWindow& window, bool forward) {
    const auto scope = frontScope(window);
    const auto focused = reachableFocus(window);
    if (focused)
        for (auto container = focused->superview(); container; container = container->superview()) {
            if (auto neighbour = container->focusNeighbour(*focused, forward)) return neighbour;
            if (container == scope) break;
        }
    const auto views = focusableViews(*scope);
    if (views.empty()) return nullptr;
    const auto at = std::ranges::find(views, focused);
    if (at == views.end()) return forward ? views.front() : views.back();
    if (forward) return std::next(at) == views.end() ? views.front() : *std::next(at);
    return at == views.begin() ? views.back() : *std::prev(at);
}

} // namespace seat
