#include "kit/uikit/TouchDispatcher.h"

#include "kit/uikit/GestureInternals.h"
#include "kit/uikit/UIWindow.h"
#include "platform/uikit/UIControl.h"
#include "platform/uikit/UITapGestureRecognizer.h"

#include <cmath>

namespace {

constexpr double tapInterval = 0.35; // seconds between two taps that count as a double tap
constexpr double tapRadius = 20;     // points between them
constexpr double tapSlop = 10;       // a finger that wandered farther was no tap

double distance(CGPoint a, CGPoint b) { return std::hypot(a.x - b.x, a.y - b.y); }

} // namespace

std::shared_ptr<TouchDispatcher::Sequence> TouchDispatcher::sequence(long identifier) const {
    const auto at = m_sequences.find(identifier);
    return at == m_sequences.end() ? nullptr : at->second;
}

std::shared_ptr<UIEvent> TouchDispatcher::makeEvent() const {
    const auto event = UIEvent::alloc();
    for (const auto& [identifier, sequence] : m_sequences) event->m_touches.push_back(sequence->touch);
    return event;
}

unsigned TouchDispatcher::tapCount(CGPoint location, double time) const {
    const bool continues = time - m_tapTime <= tapInterval && distance(location, m_tapLocation) <= tapRadius;
    return continues ? m_tapCount + 1 : 1;
}

void TouchDispatcher::began(long identifier, CGPoint location, double time) {
    if (const auto former = sequence(identifier)) cancelled(identifier, time);

    const auto next = std::make_shared<Sequence>();
    next->touch = UITouch::alloc();
    UITouch& touch = *next->touch;
    touch.m_identifier = identifier;
    touch.m_location = touch.m_previousLocation = touch.m_firstLocation = location;
    touch.m_timestamp = time;
    touch.m_tapCount = tapCount(location, time);
    m_sequences[identifier] = next;

    const auto hit = m_window.hitTest_withEvent(location, makeEvent().get());
    touch.m_view = hit;
    next->viewHears = hit != nullptr;
    for (auto view = hit; view; view = view->superview())
        for (const auto& recognizer : view->gestureRecognizers())
            if (GestureInternals::state(*recognizer).enabled) {
                GestureInternals::setDispatcher(*recognizer, this);
                next->recognizers.push_back(recognizer);
            }
    deliver(next);
}

void TouchDispatcher::moved(long identifier, CGPoint location, double time) {
    const auto moving = sequence(identifier);
    if (!moving) return;
    UITouch& touch = *moving->touch;
    touch.m_phase = UITouchPhase::Moved;
    touch.m_previousLocation = touch.m_location;
    touch.m_location = location;
    touch.m_timestamp = time;
    if (distance(location, touch.m_firstLocation) > tapSlop) touch.m_tapCount = 0;
    deliver(moving);
}

void TouchDispatcher::ended(long identifier, CGPoint location, double time) {
    // The last way of a finger may come only with its end.
    if (const auto ending = sequence(identifier); ending && ending->touch->m_location != location)
        moved(identifier, location, time);
    const auto ending = sequence(identifier);
    if (!ending) return;
    UITouch& touch = *ending->touch;
    touch.m_phase = UITouchPhase::Ended;
    touch.m_timestamp = time;
    m_tapCount = touch.m_tapCount;
    m_tapLocation = location;
    m_tapTime = time;
    deliver(ending);
    finish(ending);
}

void TouchDispatcher::cancelled(long identifier, double time) {
    const auto ending = sequence(identifier);
    if (!ending) return;
    ending->touch->m_phase = UITouchPhase::Cancelled;
    ending->touch->m_timestamp = time;
    deliver(ending);
    finish(ending);
}

void TouchDispatcher::deliver(const std::shared_ptr<Sequence>& sequence) {
    const auto keep = m_window.shared_from_this();
    const auto event = makeEvent();
    deliverToRecognizers(*sequence, *event);
    deliverToView(*sequence, *event);
}

void TouchDispatcher::deliverToRecognizers(Sequence& sequence, UIEvent& event) {
    const UITouchList touches{sequence.touch};
    for (const auto& weak : std::vector(sequence.recognizers))
        if (const auto recognizer = weak.lock()) GestureInternals::deliver(*recognizer, touches, event);
}

void TouchDispatcher::deliverToView(Sequence& sequence, UIEvent& event) {
    const auto view = sequence.touch->view();
    if (!view || !sequence.viewHears) return;
    const UITouchList touches{sequence.touch};
    switch (sequence.touch->phase()) {
    case UITouchPhase::Began:
        sequence.viewWasTold = true;
        view->touchesBegan_withEvent(touches, event);
        break;
    case UITouchPhase::Stationary:
    case UITouchPhase::Moved:
        view->touchesMoved_withEvent(touches, event);
        break;
    case UITouchPhase::Ended:
        sequence.viewHears = false;
        view->touchesEnded_withEvent(touches, event);
        break;
    case UITouchPhase::Cancelled:
        cancelView(sequence);
        break;
    }
}

void TouchDispatcher::cancelView(Sequence& sequence) {
    if (!sequence.viewHears) return;
    sequence.viewHears = false;
    if (const auto view = sequence.touch->view(); view && sequence.viewWasTold)
        view->touchesCancelled_withEvent({sequence.touch}, *makeEvent());
}

void TouchDispatcher::finish(const std::shared_ptr<Sequence>& sequence) {
    m_sequences.erase(sequence->touch->m_identifier);
    for (const auto& weak : sequence->recognizers) {
        const auto recognizer = weak.lock();
        if (!recognizer) continue;
        bool hasAnotherTouch = false;
        for (const auto& [identifier, other] : m_sequences)
            for (const auto& candidate : other->recognizers) hasAnotherTouch |= candidate.lock() == recognizer;
        if (!hasAnotherTouch) GestureInternals::touchesAreOver(*recognizer);
    }
}

bool TouchDispatcher::claim(UIGestureRecognizer& claimant) {
    std::vector<std::shared_ptr<Sequence>> claimed;
    for (const auto& [identifier, sequence] : m_sequences) {
        bool takesPart = false;
        for (const auto& weak : sequence->recognizers) takesPart |= weak.lock().get() == &claimant;
        if (!takesPart) continue;
        if (sequence->isClaimed && sequence->winner.lock().get() != &claimant) return false;
        // A tap on a control is the control's, whatever the views around it listen for.
        const auto control = std::dynamic_pointer_cast<UIControl>(sequence->touch->view());
        if (control && control->isEnabled() && claimant.view() != control &&
            dynamic_cast<UITapGestureRecognizer*>(&claimant))
            return false;
        claimed.push_back(sequence);
    }
    for (const auto& sequence : claimed) {
        sequence->isClaimed = true;
        sequence->winner = std::static_pointer_cast<UIGestureRecognizer>(claimant.shared_from_this());
        for (const auto& weak : std::vector(sequence->recognizers))
            if (const auto other = weak.lock(); other && other.get() != &claimant) GestureInternals::fail(*other);
        cancelView(*sequence);
    }
    return true;
}

void TouchDispatcher::subtreeLeaves(const UIView& subtree) {
    for (const auto& [identifier, sequence] : std::map(m_sequences)) {
        for (const auto& weak : std::vector(sequence->recognizers)) {
            const auto recognizer = weak.lock();
            if (!recognizer) continue;
            const auto view = recognizer->view();
            if (!view || view->isDescendantOfView(&subtree)) GestureInternals::cancel(*recognizer);
        }
        if (const auto view = sequence->touch->view(); view && view->isDescendantOfView(&subtree))
            cancelView(*sequence);
    }
}
