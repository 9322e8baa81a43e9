#include "platform/uikit/UITapGestureRecognizer.h"

#include <cmath>

NS_CLASS_IMPLEMENTATION(UITapGestureRecognizer, UIGestureRecognizer)

namespace {

constexpr double slop = 10; // points a finger may wander

} // namespace

std::shared_ptr<UITapGestureRecognizer>
UITapGestureRecognizer::initWithTarget_action(const std::shared_ptr<NSObject>& target, SEL action) {
    return UIGestureRecognizer::initWithTarget_action(target, action) ? self(this) : nullptr;
}

void UITapGestureRecognizer::touchesBegan_withEvent(const UITouchList& began, UIEvent& event) {
    if (event.allTouches().size() > 1 || began.size() > 1) return setState(UIGestureRecognizerStateFailed);
    follow(began.front());
    m_first = began.front()->locationInView(nullptr);
}

void UITapGestureRecognizer::touchesMoved_withEvent(const UITouchList& moved, UIEvent&) {
    const CGPoint now = moved.front()->locationInView(nullptr);
    if (std::hypot(now.x - m_first.x, now.y - m_first.y) > slop) setState(UIGestureRecognizerStateFailed);
}

void UITapGestureRecognizer::touchesEnded_withEvent(const UITouchList&, UIEvent&) {
    setState(UIGestureRecognizerStateEnded);
}

void UITapGestureRecognizer::touchesCancelled_withEvent(const UITouchList&, UIEvent&) {
    setState(UIGestureRecognizerStateFailed);
}
