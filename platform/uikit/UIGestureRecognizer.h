#pragma once

#include "platform/uikit/UIView.h"

enum UIGestureRecognizerState : int {
    UIGestureRecognizerStatePossible = 0,
    UIGestureRecognizerStateBegan = 1,
    UIGestureRecognizerStateChanged = 2,
    UIGestureRecognizerStateEnded = 3,
    UIGestureRecognizerStateCancelled = 4,
    UIGestureRecognizerStateFailed = 5,
};

// Reads the touches of its view (and of the views in it) before they do, and tells its targets, which take the
// recogniser. Of the recognisers of one touch the first to begin wins, the innermost view's being asked first; the
// others fail, and the views' own touches are cancelled. Main thread only.
//
// Targets hear of Began, Changed, Ended and Cancelled, in this order, each in the middle of the touch event that caused
// it; of Possible and Failed they hear nothing. A gesture made of one event (a tap) goes from Possible to Ended. When
// all fingers that the recogniser heard of are up, it is Possible again, without a call. A recogniser that is disabled,
// or whose view leaves its window, in the middle of a gesture is Cancelled at once, or fails where none had begun.
// An enabled control's own tap is never taken by a tap recogniser of a view around it.
class UIGestureRecognizer : public NSObject {
    NS_CLASS(UIGestureRecognizer)
public:
    static constexpr bool diesOnMainThread = true;
    ~UIGestureRecognizer() override;

    // The target is weak and may be nil. The action takes the recogniser; more pairs may be added, and are called in
    // the order of addition.
    std::shared_ptr<UIGestureRecognizer> initWithTarget_action(const std::shared_ptr<NSObject>& target, SEL action);
    void addTarget_action(const std::shared_ptr<NSObject>& target, SEL action);

    UIGestureRecognizerState state() const;
    std::shared_ptr<UIView> view() const;
    // Enabled at first. One that is not hears no touches.
    bool isEnabled() const;
    void setEnabled(bool enabled);
    // How many fingers the gesture has now: a pan that has ended has none, a tap that has ended one.
    virtual std::size_t numberOfTouches() const;
    // nil: in the window. An index without a touch gives the zero point.
    virtual CGPoint locationOfTouch_inView(std::size_t index, const UIView* view) const;
    virtual CGPoint locationInView(const UIView* view) const;

protected:
    UIGestureRecognizer();

    // The touches as they come, of the recogniser's view and the views in it. `touches` holds the ones that changed.
    virtual void touchesBegan_withEvent(const UITouchList& touches, UIEvent& event);
    virtual void touchesMoved_withEvent(const UITouchList& touches, UIEvent& event);
    virtual void touchesEnded_withEvent(const UITouchList& touches, UIEvent& event);
    virtual void touchesCancelled_withEvent(const UITouchList& touches, UIEvent& event);
    // Asked once, when the gesture is about to begin; false lets it fail.
    virtual bool shouldBegin() const;
    // The touches are over: back to Possible.
    virtual void reset();

    // Tells the targets of every state but Possible and Failed. A gesture that another one forestalled fails instead
    // of beginning.
    void setState(UIGestureRecognizerState state);
    // The touches that the gesture follows.
    const UITouchList& touches() const;
    void follow(const std::shared_ptr<UITouch>& touch);
    void letGoOfTouches();

private:
    friend struct GestureInternals; // kit/uikit/GestureInternals.h
    struct State;
    std::unique_ptr<State> m_gesture;
};
