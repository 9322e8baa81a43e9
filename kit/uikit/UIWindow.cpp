#include "kit/uikit/UIWindow.h"

#include "kit/uikit/ViewInternals.h"
#include "kit/uikit/WindowInternals.h"
#include "kit/uikit/appearance.h"
#include "kit/uikit/focus_order.h"
#include "platform/uikit/UIScrollView.h"
#include "platform/uikit/UIViewController.h"

#include <ranges>
#include <utility>

NS_CLASS_IMPLEMENTATION(UIWindow, UIView)

UIWindow::UIWindow() : m_window(std::make_unique<State>(*this)) {}
UIWindow::~UIWindow() = default;

std::shared_ptr<UIWindow> UIWindow::initWithFrame(CGRect frame) {
    if (!UIView::initWithFrame(frame)) return nullptr;
    setBackgroundColor(seat::appearance::cardColor());
    return self(this);
}

const std::shared_ptr<UIViewController>& UIWindow::rootViewController() const { return m_window->rootViewController; }

void UIWindow::setRootViewController(std::shared_ptr<UIViewController> controller) {
    if (controller == m_window->rootViewController) return;
    const auto keep = shared_from_this();
    const auto former = std::exchange(m_window->rootViewController, controller);
    if (former) former->beginAppearanceTransition_animated(/*isAppearing=*/false, /*animated=*/false);
    if (controller) controller->beginAppearanceTransition_animated(/*isAppearing=*/true, /*animated=*/false);
    if (former) {
        former->view()->removeFromSuperview();
        former->endAppearanceTransition();
    }
    if (!controller) return;
    const auto view = controller->view();
    view->setFrame(bounds());
    view->setAutoresizingMask(UIViewAutoresizingFlexibleWidth | UIViewAutoresizingFlexibleHeight);
    insertSubview_atIndex(view, 0);
    controller->endAppearanceTransition();
}

void UIWindow::touchBegan(long identifier, CGPoint location, double time) {
    WindowInternals::hideFocus(*this);
    m_window->touches.began(identifier, location, time);
}

void UIWindow::touchMoved(long identifier, CGPoint location, double time) {
    m_window->touches.moved(identifier, location, time);
}

void UIWindow::touchEnded(long identifier, CGPoint location, double time) {
    m_window->touches.ended(identifier, location, time);
}

void UIWindow::touchCancelled(long identifier, double time) { m_window->touches.cancelled(identifier, time); }

void UIWindow::scrolled(CGPoint location, CGPoint delta, double) {
    for (auto view = hitTest_withEvent(location, nullptr); view; view = view->superview()) {
        const auto scroll = std::dynamic_pointer_cast<UIScrollView>(view);
        if (scroll && scroll->scrollBy(delta)) return;
    }
}

std::shared_ptr<UIView> UIWindow::focusedView() const {
    // A screen that was covered gets the focus back where it was.
    for (const auto& weak : m_window->focused | std::views::reverse)
        if (auto view = weak.lock(); view && view->isDescendantOfView(this)) return view;
    return nullptr;
}

void UIWindow::setFocusedView(const std::shared_ptr<UIView>& view) {
    // The focus moves within what is in front; screens behind it, or away, keep theirs for when they come back.
    const auto former = focusedView();
    const auto front = seat::frontScope(*this);
    auto& focused = m_window->focused;
    std::erase_if(focused, [&](const auto& weak) {
        const auto other = weak.lock();
        return !view || !other || other == view || other->isDescendantOfView(front.get());
    });
    if (view) focused.push_back(view);
    if (const auto now = focusedView(); now != former) {
        if (former) former->focusDidChange();
        if (now) now->focusDidChange();
    }
    WindowInternals::requestFrame(*this);
}

void WindowInternals::requestFrame(const UIWindow& window) {
    if (const auto& request = state(window).requestFrame) request();
}

void WindowInternals::subtreeLeaves(UIWindow& window, UIView& subtree) {
    state(window).touches.subtreeLeaves(subtree);
    requestFrame(window);
}

void WindowInternals::focusByKeyboard(UIWindow& window, const std::shared_ptr<UIView>& view) {
    state(window).focusIsShown = view != nullptr;
    window.setFocusedView(view);
}

void WindowInternals::forgetFocus(UIWindow& window, const UIView& subtree) {
    std::erase_if(state(window).focused, [&](const auto& weak) {
        const auto view = weak.lock();
        return !view || view->isDescendantOfView(&subtree);
    });
    requestFrame(window);
}

void WindowInternals::hideFocus(UIWindow& window) {
    if (std::exchange(state(window).focusIsShown, false)) requestFrame(window);
}
