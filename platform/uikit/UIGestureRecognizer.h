#pragma once

#include "platform/uikit/UIView.h"

// The phone's numbers.
enum UIGestureRecognizerState : int {
    UIGestureRecognizerStatePossible = 0,
    UIGestureRecognizerStateBegan = 1,
    UIGestureRecognizerStateChanged = 2,
    UIGestureRecognizerStateEnded = 3,
    UIGestureRecognizerStateCancelled = 4,
    UIGestureRecognizerStateFailed = 5,
};

// Reads the touches of its view (and of the views in it) before they do, and tells its target. Of the recognisers of
// one touch the first to begin wins, the innermost view's being asked first; the others fail, and the views' own
// touches are cancelled. Main thread only.
//
// The target hears of Began, Changed, Ended and Cancelled, in this order, each in the middle of the touch event that
// caused it; of Possible and Failed it hears nothing. A gesture made of one event (a tap) goes from Possible to Ended.
// When all fingers that the recogniser heard of are up, it is Possible again, without a call. A recogniser that is
// disabled, or whose view leaves its window, in the middle of a gesture is Cancelled at once, or fails where none had
// begun. An enabled control's own tap is never taken by a tap recogniser of a view around it.
class UIGestureRecognizer : public NSObject {
    NS_CLASS(UIGestureRecognizer)
public:
    struct Internals; // the seat's way in, opaque to everybody else
    static constexpr bool diesOnMainThread = true;
    ~UIGestureRecognizer() override;

    // The target is weak and may be nil. The action takes the recogniser, and may disable or free it.
    std::shared_ptr<UIGestureRecognizer> initWithTarget_action(const std::shared_ptr<NSObject>& target, SEL action);

    // During the action's call the state that it is told of.
    UIGestureRecognizerState state() const;
    // nil while it stands on no view. A recogniser belongs to one view at a time, which holds it.
    std::shared_ptr<UIView> view() const;
    // Enabled at first. One that is not hears no touches.
    void setEnabled(bool enabled);
    // How many fingers the gesture has now: a pan that has ended has none, a tap that has ended one.
    virtual std::size_t numberOfTouches() const;
    // nil: in the window. An index without a touch gives the zero point.
    virtual CGPoint locationOfTouch_inView(std::size_t index, const UIView* view) const;

protected:
    UIGestureRecognizer();

private:
    struct State;
    std::unique_ptr<State> m_gesture;
};
