// Layout: autoresizing, the layout pass, intrinsic sizes, alignment rectangles.

#include "kit/quartz/text_size.h"
#include "kit/uikit/UIWindow.h"
#include "kit/uikit/ViewInternals.h"
#include "kit/uikit/WindowInternals.h"
#include "kit/uikit/autoresizing.h"
#include "platform/uikit/UIViewController.h"

NS_CLASS_IMPLEMENTATION(NSLayoutConstraint, NSObject)

void ViewInternals::sizeMayHaveChanged(UIView& view, CGSize oldSize) {
    const CGSize newSize = view.bounds().size;
    if (newSize == oldSize) return;
    for (const auto& subview : std::vector(state(view).subviews)) {
        const unsigned mask = state(*subview).autoresizingMask;
        if (mask == UIViewAutoresizingNone) continue;
        // A transformed view's frame is not its own rectangle: only its place follows.
        if (subview->transform() == CGAffineTransformIdentity)
            subview->setFrame(autoresizedFrame(subview->frame(), mask, oldSize, newSize));
        else
            subview->setCenter(autoresizedFrame({subview->center(), {}}, mask, oldSize, newSize).origin);
    }
    view.setNeedsLayout();
    if (UIView* const above = state(view).superview) above->subviewSizeChanged(view);
}

bool ViewInternals::needsLayout(const UIView& view) {
    return state(view).needsLayout || state(view).descendantNeedsLayout;
}

void ViewInternals::announceLayout(const UIView& view) {
    const UIView* top = &view;
    while (UIView* const above = state(*top).superview) {
        state(*above).descendantNeedsLayout = true;
        top = above;
    }
    if (auto* const window = dynamic_cast<const UIWindow*>(top)) WindowInternals::requestFrame(*window);
}

bool ViewInternals::layoutOnce(UIView& view) {
    if (!needsLayout(view)) return false;
    const auto keep = view.shared_from_this();
    UIView::State& state = ViewInternals::state(view);
    if (state.needsLayout) {
        state.needsLayout = false;
        state.laidOutText = seat::textGeneration();
        view.layoutSubviews();
        if (const auto controller = state.controller.lock()) controller->viewDidLayoutSubviews();
    }
    if (state.descendantNeedsLayout) {
        state.descendantNeedsLayout = false;
        for (const auto& subview : std::vector(state.subviews)) layoutOnce(*subview);
    }
    return true;
}

void UIView::setNeedsLayout() {
    m_view->needsLayout = true;
    ViewInternals::announceLayout(*this);
}

void UIView::layoutIfNeeded() {
    // A layout may ask for another one; one that always does must not hang the thread.
    constexpr int mostPasses = 8;
    for (int pass = 0; pass < mostPasses && ViewInternals::layoutOnce(*this); ++pass) {
    }
}

void UIView::layoutSubviews() {}
void UIView::subviewSizeChanged(UIView&) {}
unsigned UIView::autoresizingMask() const { return m_view->autoresizingMask; }
void UIView::setAutoresizingMask(unsigned mask) { m_view->autoresizingMask = mask; }
CGSize UIView::sizeThatFits(CGSize) const { return bounds().size; }

void UIView::sizeToFit() {
    const CGSize size = sizeThatFits(bounds().size);
    if (transform() == CGAffineTransformIdentity)
        setFrame({frame().origin, size});
    else
        setBounds({bounds().origin, size});
}

CGSize UIView::intrinsicContentSize() const { return {UIViewNoIntrinsicMetric, UIViewNoIntrinsicMetric}; }

void UIView::invalidateIntrinsicContentSize() {
    if (m_view->superview) m_view->superview->setNeedsLayout();
}

UIEdgeInsets UIView::alignmentRectInsets() const { return {}; }

CGRect UIView::alignmentRectForFrame(CGRect frame) const {
    const UIEdgeInsets insets = alignmentRectInsets();
    return {{frame.origin.x + insets.left, frame.origin.y + insets.top},
            {frame.size.width - insets.left - insets.right, frame.size.height - insets.top - insets.bottom}};
}

CGRect UIView::frameForAlignmentRect(CGRect rect) const {
    const UIEdgeInsets insets = alignmentRectInsets();
    return {{rect.origin.x - insets.left, rect.origin.y - insets.top},
            {rect.size.width + insets.left + insets.right, rect.size.height + insets.top + insets.bottom}};
}

const std::vector<std::shared_ptr<NSLayoutConstraint>>* UIView::constraints() const {
    return m_view->constraints ? &*m_view->constraints : nullptr;
}

void UIView::addConstraint(const std::shared_ptr<NSLayoutConstraint>& constraint) {
    if (!constraint) return;
    if (!m_view->constraints) m_view->constraints.emplace();
    m_view->constraints->push_back(constraint);
}

std::shared_ptr<UIView> UIView::viewForBaselineLayout() { return self(this); }
