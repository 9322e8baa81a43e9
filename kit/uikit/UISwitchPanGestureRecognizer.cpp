#include "kit/uikit/UISwitchPanGestureRecognizer.h"

#include <cmath>

NS_CLASS_IMPLEMENTATION(UISwitchPanGestureRecognizer, UIPanGestureRecognizer)

std::shared_ptr<UISwitchPanGestureRecognizer>
UISwitchPanGestureRecognizer::initWithTarget_action(const std::shared_ptr<NSObject>& target, SEL action) {
    return UIPanGestureRecognizer::initWithTarget_action(target, action) ? self(this) : nullptr;
}

bool UISwitchPanGestureRecognizer::shouldBegin() const { return std::abs(movement().x) > std::abs(movement().y); }
