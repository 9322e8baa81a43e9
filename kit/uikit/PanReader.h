#pragma once

#include "kit/uikit/GestureReader.h"
#include "platform/quartz/CGGeometry.h"

#include <vector>

class UIPanGestureRecognizer;

namespace seat {

// One finger that moves. What a kind of pan adds (across only, or where there is something to scroll) is a class
// derived from this one.
class PanReader : public GestureReader {
public:
    // Of a pan; valid while it lives.
    static PanReader& of(const UIPanGestureRecognizer& pan);

    void began(UIGestureRecognizer& recognizer, const UITouchList& touches, UIEvent& event) override;
    void moved(UIGestureRecognizer& recognizer, const UITouchList& touches, UIEvent& event) override;
    void ended(UIGestureRecognizer& recognizer, const UITouchList& touches, UIEvent& event) override;
    void cancelled(UIGestureRecognizer& recognizer, const UITouchList& touches, UIEvent& event) override;
    void reset() override;

    // Since the gesture began, in points, along the view's axes; nil: the window's. Zero before the first touch.
    CGPoint translationInView(const UIView* view) const;
    // Points a second over the last tenth of a second; zero when the finger has rested so long.
    CGPoint velocityInView(const UIView* view) const;
    // The last place, also when the finger has left.
    CGPoint locationInView(const UIView* view) const;

protected:
    // From the finger's first place to where it is, in the window.
    CGPoint movement() const;
    // Begins at once, before the finger has moved.
    void beginAtOnce(UIGestureRecognizer& recognizer);

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

} // namespace seat
