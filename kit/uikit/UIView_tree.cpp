// The tree of views: who holds whom, and who is told.

#include "kit/quartz/text_size.h"
#include "kit/uikit/UIWindow.h"
#include "kit/uikit/ViewInternals.h"
#include "kit/uikit/WindowInternals.h"
#include "kit/uikit/view_controller.h"

#include <algorithm>

namespace {

using Subviews = std::vector<std::shared_ptr<UIView>>;

Subviews::iterator find(Subviews& subviews, const UIView* view) {
    return std::find_if(subviews.begin(), subviews.end(), [&](const auto& subview) { return subview.get() == view; });
}

unsigned indexOfLayer(const CALayer& parent, const CALayer* layer) {
    const auto& sublayers = parent.sublayers();
    const auto at = std::find_if(sublayers.begin(), sublayers.end(), [&](const auto& s) { return s.get() == layer; });
    return static_cast<unsigned>(at - sublayers.begin());
}

void tellMovedToWindow(UIView& view) {
    const auto keep = view.shared_from_this();
    // Texts have another size than when it was last shown.
    if (ViewInternals::state(view).laidOutText != seat::textGeneration()) view.setNeedsLayout();
    view.didMoveToWindow();
    for (const auto& subview : Subviews(view.subviews())) tellMovedToWindow(*subview);
}

} // namespace

const UIView& ViewInternals::root(const UIView& view) {
    const UIView* top = &view;
    while (const UIView* above = state(*top).superview) top = above;
    return *top;
}

UIWindow* ViewInternals::window(const UIView& view) {
    return dynamic_cast<UIWindow*>(const_cast<UIView*>(&root(view)));
}

void seat::setViewController(UIView& view, const std::shared_ptr<UIViewController>& controller) {
    ViewInternals::state(view).controller = controller;
}

std::shared_ptr<UIViewController> seat::viewController(const UIView& view) {
    return ViewInternals::state(view).controller.lock();
}

std::shared_ptr<UIView> UIView::superview() const {
    return m_view->superview ? std::static_pointer_cast<UIView>(m_view->superview->shared_from_this()) : nullptr;
}

const std::vector<std::shared_ptr<UIView>>& UIView::subviews() const { return m_view->subviews; }

std::shared_ptr<UIWindow> UIView::window() const {
    UIWindow* const window = ViewInternals::window(*this);
    return window ? self(window) : nullptr;
}

bool UIView::isDescendantOfView(const UIView* view) const {
    for (const UIView* at = this; at; at = at->m_view->superview)
        if (at == view) return true;
    return false;
}

void UIView::addSubview(const std::shared_ptr<UIView>& view) { insertSubview_atIndex(view, m_view->subviews.size()); }

void UIView::insertSubview_atIndex(const std::shared_ptr<UIView>& given, std::size_t index) {
    // The argument may live in a list that changes here.
    const auto view = given; // NOLINT(performance-unnecessary-copy-initialization)
    if (!view || isDescendantOfView(view.get())) return;

    const auto keep = shared_from_this();
    const bool staysHere = view->m_view->superview == this;
    UIWindow* const oldWindow = ViewInternals::window(*view);
    if (staysHere) {
        m_view->subviews.erase(find(m_view->subviews, view.get()));
    } else {
        view->willMoveToSuperview(self(this));
        if (oldWindow && oldWindow != ViewInternals::window(*this)) WindowInternals::subtreeLeaves(*oldWindow, *view);
        if (UIView* const old = view->m_view->superview) {
            if (const auto at = find(old->m_view->subviews, view.get()); at != old->m_view->subviews.end())
                old->m_view->subviews.erase(at);
        }
    }
    view->m_view->superview = this;
    auto& subviews = m_view->subviews;
    if (index < subviews.size()) {
        view->m_view->layer->removeFromSuperlayer();
        const unsigned at = indexOfLayer(*m_view->layer, subviews[index]->m_view->layer.get());
        m_view->layer->insertSublayer_atIndex(view->m_view->layer, at);
        subviews.insert(subviews.begin() + static_cast<std::ptrdiff_t>(index), view);
    } else {
        m_view->layer->addSublayer(view->m_view->layer);
        subviews.push_back(view);
    }
    if (ViewInternals::needsLayout(*view)) ViewInternals::announceLayout(*view);
    if (staysHere) return;
    view->didMoveToSuperview();
    if (ViewInternals::window(*view) != oldWindow) tellMovedToWindow(*view);
}

void UIView::bringSubviewToFront(const std::shared_ptr<UIView>& view) {
    if (view && view->m_view->superview == this) addSubview(view);
}

void UIView::removeFromSuperview() {
    if (!m_view->superview) return;
    const auto keep = self(this);
    willMoveToSuperview(nullptr);
    UIView* const old = m_view->superview;
    if (!old) return; // taken away meanwhile
    UIWindow* const oldWindow = ViewInternals::window(*this);
    if (oldWindow) WindowInternals::subtreeLeaves(*oldWindow, *this);
    if (const auto at = find(old->m_view->subviews, this); at != old->m_view->subviews.end())
        old->m_view->subviews.erase(at);
    m_view->superview = nullptr;
    m_view->layer->removeFromSuperlayer();
    didMoveToSuperview();
    if (oldWindow) tellMovedToWindow(*this);
}

void UIView::willMoveToSuperview(const std::shared_ptr<UIView>&) {}
void UIView::didMoveToSuperview() {}
void UIView::didMoveToWindow() {}
