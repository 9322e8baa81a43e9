#pragma once

#include "platform/runtime/NSObject.h"

#include <memory>
#include <vector>

class UIEvent;
class UITouch;
using UITouchList = std::vector<std::shared_ptr<UITouch>>;

// Whatever can take events: views, controllers, the application. Main thread only.
//
// Touches. Each finger has a sequence of its own: began, any number of moved, then ended or cancelled, exactly one of
// the two. It is hit-tested once, when it comes down, and all its events go to the view that was hit then, wherever the
// finger wanders; a view that leaves its window gets touchesCancelled and nothing after it. Of several fingers each is
// delivered by itself: the list holds the one touch that changed, the event all that are down. A finger that comes down
// a second time without having been lifted cancels its former sequence first. Where a finger is lifted elsewhere than
// it was seen last, it moves there first, then ends. The gesture recognisers of the hit view and of the views around it
// hear each event before the view does (see UIGestureRecognizer.h).
class UIResponder : public NSObject {
    NS_CLASS(UIResponder)
public:
    static constexpr bool diesOnMainThread = true;

    // Who is asked next: for a view its controller, else its superview; for a controller what holds its view; nil at
    // the end.
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
