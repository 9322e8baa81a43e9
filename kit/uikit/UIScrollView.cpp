#include "platform/uikit/UIScrollView.h"

#include "kit/uikit/FrameSteps.h"
#include "kit/uikit/GestureInternals.h"
#include "kit/uikit/ScrollInternals.h"
#include "kit/uikit/WindowInternals.h"
#include "platform/runtime/method.h"

#include <algorithm>
#include <cmath>

NS_CLASS_IMPLEMENTATION(UIScrollView, UIView, method<&UIScrollView::handleScrollPan>("handleScrollPan:"))

UIScrollView::UIScrollView() : m_scroll(std::make_unique<State>()) {}
UIScrollView::~UIScrollView() = default;

std::shared_ptr<UIScrollView> UIScrollView::initWithFrame(CGRect frame) {
    if (!UIView::initWithFrame(frame)) return nullptr;
    setClipsToBounds(true);
    m_scroll->pan = UIPanGestureRecognizer::alloc()->initWithTarget_action(shared_from_this(), "handleScrollPan:");
    GestureInternals::setReader(*m_scroll->pan, std::make_unique<seat::ScrollPanReader>());
    addGestureRecognizer(m_scroll->pan);
    return self(this);
}

CGPoint UIScrollView::contentOffset() const { return bounds().origin; }

void UIScrollView::setContentOffset(CGPoint offset) {
    ScrollInternals::stop(*this);
    ScrollInternals::moveTo(*this, offset);
}

CGSize UIScrollView::contentSize() const { return m_scroll->contentSize; }

void UIScrollView::setContentSize(CGSize size) {
    m_scroll->contentSize = size;
    ScrollInternals::settle(*this);
}

UIEdgeInsets UIScrollView::contentInset() const { return m_scroll->contentInset; }

void UIScrollView::setContentInset(UIEdgeInsets inset) {
    const bool wasAtTop = contentOffset().y == -m_scroll->contentInset.top;
    m_scroll->contentInset = inset;
    if (wasAtTop && !m_scroll->dragging) ScrollInternals::moveTo(*this, {contentOffset().x, -inset.top});
    ScrollInternals::settle(*this);
}

void UIScrollView::handleScrollPan(const std::shared_ptr<NSObject>&) { ScrollInternals::handlePan(*this); }
bool UIScrollView::isDragging() const { return m_scroll->dragging; }
bool UIScrollView::isDecelerating() const { return m_scroll->decelerating; }
void UIScrollView::contentOffsetChanged() {}

void UIScrollView::setFrame(CGRect frame) {
    UIView::setFrame(frame);
    ScrollInternals::settle(*this);
}

void UIScrollView::setBounds(CGRect bounds) {
    const CGPoint former = contentOffset();
    UIView::setBounds(bounds);
    if (contentOffset() != former) contentOffsetChanged();
}

void UIScrollView::didMoveToWindow() {
    UIView::didMoveToWindow();
    if (!window()) ScrollInternals::stop(*this);
}

void UIScrollView::scrollRectToVisible_animated(CGRect rect, bool animated) {
    const auto range = ScrollInternals::verticalRange(*this);
    const double top = contentOffset().y + m_scroll->contentInset.top;
    const double bottom = contentOffset().y + bounds().size.height - m_scroll->contentInset.bottom;
    double y = contentOffset().y;
    if (CGRectGetMaxY(rect) > bottom) y += CGRectGetMaxY(rect) - bottom;
    // A rectangle that is too high shows its top.
    if (CGRectGetMinY(rect) < top + y - contentOffset().y) y = CGRectGetMinY(rect) - m_scroll->contentInset.top;
    y = range.clamp(y);
    if (y != contentOffset().y) setContentOffset_animated({contentOffset().x, y}, animated);
}

bool UIScrollView::scrollBy(CGPoint delta) {
    const auto range = ScrollInternals::verticalRange(*this);
    const double y = range.clamp(contentOffset().y + delta.y);
    if (y == contentOffset().y || m_scroll->dragging) return false;
    ScrollInternals::stop(*this);
    ScrollInternals::moveTo(*this, {contentOffset().x, y});
    m_scroll->indicator.show(*layer(), bounds(), range);
    m_scroll->indicator.fade();
    return true;
}
