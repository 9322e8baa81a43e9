#pragma once

#include "platform/uikit/UIGestureRecognizer.h"

namespace seat {

// How one kind of recogniser reads its touches: those of the recogniser's view and of the views in it, while the
// gesture is possible or under way. Belongs to its recogniser.
class GestureReader {
public:
    virtual ~GestureReader() = default;
    // `touches` holds the ones that changed.
    virtual void began(UIGestureRecognizer& recognizer, const UITouchList& touches, UIEvent& event) = 0;
    virtual void moved(UIGestureRecognizer& recognizer, const UITouchList& touches, UIEvent& event) = 0;
    virtual void ended(UIGestureRecognizer& recognizer, const UITouchList& touches, UIEvent& event) = 0;
    virtual void cancelled(UIGestureRecognizer& recognizer, const UITouchList& touches, UIEvent& event) = 0;
    // Asked once, when the gesture is about to begin; false lets it fail.
    virtual bool shouldBegin(const UIGestureRecognizer&) const { return true; }
    // The touches are over: back to Possible.
    virtual void reset() {}
};

} // namespace seat
