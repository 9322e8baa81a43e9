#pragma once

#include "platform/runtime/NSObject.h"
#include "platform/uikit/UITouch.h"

// Whatever can take events: views, controllers, the application. Main thread only.
class UIResponder : public NSObject {
    NS_CLASS(UIResponder)
public:
    static constexpr bool diesOnMainThread = true;

    virtual std::shared_ptr<UIResponder> nextResponder() const;

    // By default passed on to the next responder.
    virtual void touchesBegan_withEvent(const UITouchList& touches, UIEvent& event);
    virtual void touchesMoved_withEvent(const UITouchList& touches, UIEvent& event);
    virtual void touchesEnded_withEvent(const UITouchList& touches, UIEvent& event);
    virtual void touchesCancelled_withEvent(const UITouchList& touches, UIEvent& event);

    // Escape, or the way back of assistive technology: takes away what is in front. By default the next responder is
    // asked; false when nobody did anything.
    virtual bool accessibilityPerformEscape();

protected:
    UIResponder() = default;
};
