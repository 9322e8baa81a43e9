#include "kit/uikit/keyboard.h"

#include "kit/uikit/ViewInternals.h"
#include "kit/uikit/WindowInternals.h"
#include "kit/uikit/focus_order.h"
#include "kit/uikit/front_controller.h"
#include "kit/uikit/hid_keys.h"
#include "platform/dispatch.h"
#include "platform/uikit/UIKeyEvent.h"
#include "platform/uikit/UIScrollView.h"
#include "platform/uikit/UIViewController.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace seat {

// A message before the screen takes the keys: what waits behind it waits on.
bool frontScreenWaits(const UIWindow& window) {
    for (const auto& view : window.subviews())
        if (view->accessibilityRole() == UIAccessibilityRole::Alert && view->accessibilityViewIsModal()) return false;
    const auto front = frontController(window);
    return front && front->waitsForKey();
}

namespace {

constexpr double roomAround = 12; // points of the neighbours that show above and below the focus

void showInScrollViews(const UIView& view) {
    for (auto above = view.superview(); above; above = above->superview())
        if (const auto scroll = std::dynamic_pointer_cast<UIScrollView>(above))
            scroll->scrollRectToVisible_animated(
                CGRectInset(view.convertRect_toView(view.bounds(), scroll.get()), 0, -roomAround), /*animated=*/false);
}

void moveFocus(UIWindow& window, bool forward) {
    window.layoutIfNeeded(); // rows that were reloaded since the last frame are to be found
    const auto next = nextFocus(window, forward);
    if (!next) return;
    WindowInternals::focusByKeyboard(window, next);
    showInScrollViews(*next);
}

std::optional<UIAccessibilityDirection> direction(long key) {
    switch (key) {
    case hid::left:
        return UIAccessibilityDirection::Left;
    case hid::right:
        return UIAccessibilityDirection::Right;
    case hid::up:
        return UIAccessibilityDirection::Up;
    case hid::down:
        return UIAccessibilityDirection::Down;
    default:
        return std::nullopt;
    }
}

// True when the key was the focused slider's or canvas's.
bool step(UIWindow& window, const UIKeyEvent& event) {
    const auto focused = reachableFocus(window);
    const auto way = direction(event.symbol());
    if (!focused || !way) return false;
    const auto role = focused->accessibilityRole();
    if (role != UIAccessibilityRole::Slider && role != UIAccessibilityRole::Canvas) return false;
    WindowInternals::focusByKeyboard(window, focused);
    const bool large = event.modifiers() & UIKeyEvent::Shift;
    focused->accessibilityStep(*way, large ? UIAccessibilityStep::Large : UIAccessibilityStep::Small);
    return true;
}

std::shared_ptr<UIScrollView> firstScrollView(const std::shared_ptr<UIView>& view) {
    if (!ViewInternals::isVisible(*view)) return nullptr;
    if (auto scroll = std::dynamic_pointer_cast<UIScrollView>(view)) return scroll;
    const auto& subviews = view->subviews();
    for (auto at = subviews.rbegin(); at != subviews.rend(); ++at)
        if (auto scroll = firstScrollView(*at)) return scroll;
    return nullptr;
}

std::shared_ptr<UIScrollView> scrollViewForKeys(const UIWindow& window) {
    for (std::shared_ptr<UIView> view = reachableFocus(window); view; view = view->superview())
        if (auto scroll = std::dynamic_pointer_cast<UIScrollView>(view)) return scroll;
    return firstScrollView(frontScope(window));
}

void scroll(const UIWindow& window, long key) {
    const auto view = scrollViewForKeys(window);
    if (!view) return;
    const UIEdgeInsets inset = view->contentInset();
    const double page = (view->bounds().size.height - inset.top - inset.bottom) * 0.9;
    const double top = -inset.top;
    const double bottom = std::max(view->contentSize().height + inset.bottom - view->bounds().size.height, top);
    double y = view->contentOffset().y;
    switch (key) {
    case hid::pageUp:
        y -= page;
        break;
    case hid::pageDown:
        y += page;
        break;
    case hid::home:
        y = top;
        break;
    default:
        y = bottom;
        break;
    }
    view->setContentOffset_animated({view->contentOffset().x, std::max(top, std::min(y, bottom))}, /*animated=*/true);
}

// A progress panel over the front screen hears of an escape before the screen, wherever the focus is.
bool escapeFromProgress(const UIWindow& window) {
    const auto front = frontController(window);
    if (!front || !front->isViewLoaded()) return false;
    const auto& subviews = front->view()->subviews();
    const auto panel = std::find_if(subviews.rbegin(), subviews.rend(), [](const auto& view) {
        return view->accessibilityRole() == UIAccessibilityRole::ProgressIndicator && ViewInternals::isVisible(*view);
    });
    if (panel == subviews.rend()) return false;
    // It may take itself away meanwhile.
    const auto keep = *panel; // NOLINT(performance-unnecessary-copy-initialization)
    return keep->accessibilityPerformEscape();
}

void escape(UIWindow& window) {
    std::shared_ptr<UIResponder> first = reachableFocus(window);
    const auto scope = frontScope(window);
    const auto front = frontController(window);
    const bool isFrontInScope = front && front->isViewLoaded() && front->view()->isDescendantOfView(scope.get());
    if (!first && scope.get() != &window && !isFrontInScope) first = scope;
    if (scope.get() == &window && escapeFromProgress(window)) return;
    if (!first) first = front;
    if (first) first->accessibilityPerformEscape();
}

// A key that activates works when it is released, and only when it also went down here. The work waits for its turn on
// the main queue: nothing of this key press may reach what the activation opens.
void activationKey(UIWindow& window, const UIKeyEvent& event) {
    auto& state = WindowInternals::state(window);
    if (event.isKeyDown()) {
        if (event.isRepeat()) return;
        state.activationKey = event.symbol();
        state.activated = reachableFocus(window);
        return;
    }
    const bool wentDownHere = std::exchange(state.activationKey, 0) == event.symbol();
    const auto view = std::exchange(state.activated, {}).lock();
    if (!wentDownHere || !view || view != reachableFocus(window)) return;
    WindowInternals::focusByKeyboard(window, view);
    dispatch_async(dispatch_get_main_queue(), [weak = std::weak_ptr(view)] {
        if (const auto still = weak.lock(); still && still->window() && still->accessibilityIsEnabled())
            still->accessibilityActivate();
    });
}

void keyDown(UIWindow& window, const UIKeyEvent& event) {
    if (step(window, event)) return;
    switch (event.symbol()) {
    case hid::tab:
        return moveFocus(window, !(event.modifiers() & UIKeyEvent::Shift));
    case hid::down:
        return moveFocus(window, /*forward=*/true);
    case hid::up:
        return moveFocus(window, /*forward=*/false);
    case hid::escape:
        if (!event.isRepeat()) escape(window);
        return;
    case hid::pageUp:
    case hid::pageDown:
    case hid::home:
    case hid::end:
        return scroll(window, event.symbol());
    default:
        return;
    }
}

// A row that waits takes the whole of a key press: also what comes of it once the row waits no more, up to the release.
bool isTaken(UIWindow& window, const UIKeyEvent& event) {
    auto& taken = WindowInternals::state(window).takenKeys;
    const bool goesDown = event.isKeyDown() && !event.isRepeat();
    const bool wasTaken = !goesDown && taken.contains(event._keyCode());
    if (goesDown || !event.isKeyDown()) taken.erase(event._keyCode());
    if (!frontScreenWaits(window)) return wasTaken;
    if (event.isKeyDown()) taken.insert(event._keyCode());
    return true;
}

} // namespace

void goBack(UIWindow& window) {
    const auto front = frontController(window);
    if (!front || !front->isViewLoaded()) return;
    if (front->view()->isDescendantOfView(frontScope(window).get())) front->accessibilityPerformEscape();
}

void handleKey(UIWindow& window, const UIKeyEvent& event) {
    const auto keep = window.shared_from_this();
    if (isTaken(window, event)) {
        WindowInternals::state(window).activationKey = 0;
        return;
    }
    if (event.isKeyDown() && event.modifiers() == UIKeyEvent::Alt && event.symbol() == hid::left) {
        if (!event.isRepeat()) goBack(window);
        return;
    }
    const unsigned others = UIKeyEvent::Control | UIKeyEvent::Alt | UIKeyEvent::GUI;
    if (event.isKeyDown() && (event.modifiers() & others)) return; // the desktop's own shortcuts
    switch (event.symbol()) {
    case hid::enter:
    case hid::keypadEnter:
    case hid::space:
        return activationKey(window, event);
    default:
        if (event.isKeyDown()) keyDown(window, event);
    }
}

} // namespace seat
