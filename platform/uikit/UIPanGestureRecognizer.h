#pragma once

#include "platform/uikit/UIGestureRecognizer.h"

// One finger that moves. Begins once the finger has left a small circle; in Ended no touch is left.
class UIPanGestureRecognizer : public UIGestureRecognizer {
    NS_CLASS(UIPanGestureRecognizer)
public:
    std::shared_ptr<UIPanGestureRecognizer> initWithTarget_action(const std::shared_ptr<NSObject>& target, SEL action);

    // Since the gesture began, in points.
    CGPoint translationInView(const UIView* view) const;
    // Points a second.
    CGPoint velocityInView(const UIView* view) const;
};
