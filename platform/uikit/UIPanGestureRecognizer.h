#pragma once

#include "platform/uikit/UIGestureRecognizer.h"

// One finger that moves. Begins once the finger is 8 points or more from where it came down, in any direction; the
// movement that started it is counted from the rim of that circle, so that what is dragged does not jump. A finger that
// comes down while one leads is not followed, and its movements change nothing; the leading finger's end ends the
// gesture, even when the other is still down. A pan that began with its only movement is told once more, Changed, with
// its touch, before it ends. In Ended and Cancelled no touch is left: numberOfTouches() is 0 and locationOfTouch gives
// the zero point.
class UIPanGestureRecognizer : public UIGestureRecognizer {
    NS_CLASS(UIPanGestureRecognizer)
public:
    std::shared_ptr<UIPanGestureRecognizer> initWithTarget_action(const std::shared_ptr<NSObject>& target, SEL action);

protected:
    UIPanGestureRecognizer() = default;
};
