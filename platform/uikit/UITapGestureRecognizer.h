#pragma once

#include "platform/uikit/UIGestureRecognizer.h"

// One finger down and up: it fails once the finger is more than 10 points from where it came down, when a second finger
// is down with it, or when the touch is cancelled. How long it is held does not matter. Every tap is one gesture; two
// taps within 0.35 s and 20 points are two. In Ended, and only there, targets are told, and it still has its touch:
// numberOfTouches() is 1 and locationOfTouch gives where the finger left.
class UITapGestureRecognizer : public UIGestureRecognizer {
    NS_CLASS(UITapGestureRecognizer)
public:
    std::shared_ptr<UITapGestureRecognizer> initWithTarget_action(const std::shared_ptr<NSObject>& target, SEL action);

protected:
    UITapGestureRecognizer() = default;
};
