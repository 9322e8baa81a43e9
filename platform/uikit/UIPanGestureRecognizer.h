#pragma once

#include "platform/uikit/UIGestureRecognizer.h"

// One finger that moves. Begins once the finger is 8 points or more from where it came down, in any direction; the
// movement that started it is counted from the rim of that circle, so that what is dragged does not jump. A finger that
// comes down while one leads is not followed, and its movements change nothing; the leading finger's end ends the
// gesture, even when the other is still down. A pan that began with its only movement is told once more, Changed, with
// its touch, before it ends. In Ended and Cancelled no touch is left: numberOfTouches() is 0 and locationOfTouch gives
// the zero point, while locationInView still knows the last place.
class UIPanGestureRecognizer : public UIGestureRecognizer {
    NS_CLASS(UIPanGestureRecognizer)
public:
    std::shared_ptr<UIPanGestureRecognizer> initWithTarget_action(const std::shared_ptr<NSObject>& target, SEL action);

    // Since the gesture began, in points, along the view's axes; nil: the window's. Zero before the first touch.
    CGPoint translationInView(const UIView* view) const;
    // Points a second over the last tenth of a second; zero when the finger has rested so long.
    CGPoint velocityInView(const UIView* view) const;
    CGPoint locationInView(const UIView* view) const override;

protected:
    UIPanGestureRecognizer() = default;
    void touchesBegan_withEvent(const UITouchList& touches, UIEvent& event) override;
    void touchesMoved_withEvent(const UITouchList& touches, UIEvent& event) override;
    void touchesEnded_withEvent(const UITouchList& touches, UIEvent& event) override;
    void touchesCancelled_withEvent(const UITouchList& touches, UIEvent& event) override;
    void reset() override;
    // From the finger's first place to where it is, in the window.
    CGPoint movement() const;
    // Begins at once, before the finger has moved.
    void beginAtOnce();

private:
    struct Sample {
        CGPoint location; // window
        double time = 0;
    };
    void remember(const UITouch& touch);
    CGPoint differenceInView(CGPoint from, CGPoint to, const UIView* view) const;

    CGPoint m_first;              // where the finger came down, in the window
    CGPoint m_origin;             // where the gesture began
    std::vector<Sample> m_recent; // the last tenth of a second, for the velocity
    double m_lastTime = 0;
};
