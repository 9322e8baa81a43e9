#include "kit/quartz/animation.h"
#include "platform/uikit/UIView.h"

void UIView::animateWithDuration_animations(double duration, const std::function<void()>& animations) {
    seat::runAnimationBlock(duration, animations);
}

void UIView::animateWithDuration_animations_completion(double duration, const std::function<void()>& animations,
                                                       std::function<void(bool finished)> completion) {
    seat::runAnimationBlock(duration, animations, std::move(completion));
}
