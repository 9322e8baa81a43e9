#pragma once

#include "platform/quartz/CGGeometry.h"
#include "platform/runtime/NSObject.h"
#include "platform/uikit/UIResponder.h"

#include <vector>

class UIView;

enum class UITouchPhase { Began, Moved, Stationary, Ended, Cancelled };

// One finger, or the mouse with its button held.
class UITouch final : public NSObject {
    NS_CLASS(UITouch)

    UITouchPhase phase() const { return m_phase; }
    double timestamp() const { return m_timestamp; } // seconds, as CACurrentMediaTime
    unsigned tapCount() const { return m_tapCount; }
    // The view that was hit when the touch began; nil when it is gone.
    std::shared_ptr<UIView> view() const { return m_view.lock(); }
    // nil: in the window's coordinates.
    CGPoint locationInView(const UIView* view) const;
    CGPoint previousLocationInView(const UIView* view) const;

private:
    friend class TouchDispatcher; // kit/uikit
    UITouchPhase m_phase = UITouchPhase::Began;
    double m_timestamp = 0;
    unsigned m_tapCount = 0;
    long m_identifier = 0;
    std::weak_ptr<UIView> m_view;
    CGPoint m_location; // window coordinates
    CGPoint m_previousLocation;
    CGPoint m_firstLocation;
};

// All touches of the window at one moment.
class UIEvent final : public NSObject {
    NS_CLASS(UIEvent)

    const std::vector<std::shared_ptr<UITouch>>& allTouches() const { return m_touches; }

private:
    friend class TouchDispatcher; // kit/uikit
    std::vector<std::shared_ptr<UITouch>> m_touches;
};
