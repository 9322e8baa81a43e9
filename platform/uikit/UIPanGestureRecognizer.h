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
