#include "platform/uikit/UIPanGestureRecognizer.h"

#include "kit/uikit/GestureInternals.h"
#include "kit/uikit/PanReader.h"
#include "kit/uikit/UITouch.h"
#include "platform/uikit/UIView.h"

#include <cmath>

NS_CLASS_IMPLEMENTATION(UIPanGestureRecognizer, UIGestureRecognizer)

namespace {

constexpr double panSlop = 8;          // points the finger moves before the gesture begins
constexpr double velocityWindow = 0.1; // seconds that the velocity is taken over

CGPoint minus(CGPoint a, CGPoint b) { return {a.x - b.x, a.y - b.y}; }
double length(CGPoint p) { return std::hypot(p.x, p.y); }

bool isLedBy(const UIGestureRecognizer& recognizer, const std::shared_ptr<UITouch>& touch) {
    const auto& followed = GestureInternals::state(recognizer).touches;
    return !followed.empty() && followed.front() == touch;
}

} // namespace

std::shared_ptr<UIPanGestureRecognizer>
UIPanGestureRecognizer::initWithTarget_action(const std::shared_ptr<NSObject>& target, SEL action) {
    if (!UIGestureRecognizer::initWithTarget_action(target, action)) return nullptr;
    GestureInternals::setReader(*this, std::make_unique<seat::PanReader>());
    return self(this);
}

namespace seat {

PanReader& PanReader::of(const UIPanGestureRecognizer& pan) {
    return static_cast<PanReader&>(*GestureInternals::state(pan).reader);
}

void PanReader::began(UIGestureRecognizer& recognizer, const UITouchList& touches, UIEvent&) {
    if (!GestureInternals::state(recognizer).touches.empty()) return; // one finger leads
    GestureInternals::follow(recognizer, touches.front());
    m_first = m_origin = touches.front()->locationInView(nullptr);
    m_recent.clear();
    remember(*touches.front());
}

void PanReader::moved(UIGestureRecognizer& recognizer, const UITouchList& touches, UIEvent&) {
    if (!isLedBy(recognizer, touches.front())) return;
    remember(*touches.front());
    if (recognizer.state() != UIGestureRecognizerStatePossible)
        return GestureInternals::setState(recognizer, UIGestureRecognizerStateChanged);
    const double distance = length(movement());
    if (distance < panSlop) return;
    // Counted from the rim of the small circle: what is dragged neither jumps nor lags behind a quick finger.
    m_origin = {m_first.x + movement().x * panSlop / distance, m_first.y + movement().y * panSlop / distance};
    GestureInternals::setState(recognizer, UIGestureRecognizerStateBegan);
}

void PanReader::beginAtOnce(UIGestureRecognizer& recognizer) {
    m_origin = m_first;
    GestureInternals::setState(recognizer, UIGestureRecognizerStateBegan);
}

void PanReader::ended(UIGestureRecognizer& recognizer, const UITouchList& touches, UIEvent&) {
    if (!isLedBy(recognizer, touches.front())) return;
    m_lastTime = touches.front()->timestamp();
    // A pan that began with its only movement: nobody has heard yet, with the finger still there, where that led.
    if (recognizer.state() == UIGestureRecognizerStateBegan) {
        const auto keep = recognizer.shared_from_this();
        GestureInternals::setState(recognizer, UIGestureRecognizerStateChanged);
        // What it led to may have taken the gesture away.
        if (recognizer.state() != UIGestureRecognizerStateChanged) return;
    }
    GestureInternals::letGoOfTouches(recognizer);
    GestureInternals::setState(recognizer, recognizer.state() == UIGestureRecognizerStatePossible
                                               ? UIGestureRecognizerStateFailed
                                               : UIGestureRecognizerStateEnded);
}

void PanReader::cancelled(UIGestureRecognizer& recognizer, const UITouchList& touches, UIEvent&) {
    if (!isLedBy(recognizer, touches.front())) return;
    GestureInternals::letGoOfTouches(recognizer);
    GestureInternals::setState(recognizer, recognizer.state() == UIGestureRecognizerStatePossible
                                               ? UIGestureRecognizerStateFailed
                                               : UIGestureRecognizerStateCancelled);
}

void PanReader::reset() { m_recent.clear(); }

void PanReader::remember(const UITouch& touch) {
    m_lastTime = touch.timestamp();
    m_recent.push_back({touch.locationInView(nullptr), touch.timestamp()});
    // One sample older than the window stays, so that slow movement has something to be measured against.
    while (m_recent.size() > 2 && m_lastTime - m_recent[1].time > velocityWindow) m_recent.erase(m_recent.begin());
}

CGPoint PanReader::movement() const { return m_recent.empty() ? CGPoint{} : minus(m_recent.back().location, m_first); }

CGPoint PanReader::differenceInView(CGPoint from, CGPoint to, const UIView* in) const {
    if (!in) return minus(to, from);
    return minus(in->convertPoint_fromView(to, nullptr), in->convertPoint_fromView(from, nullptr));
}

CGPoint PanReader::translationInView(const UIView* in) const {
    return m_recent.empty() ? CGPoint{} : differenceInView(m_origin, m_recent.back().location, in);
}

CGPoint PanReader::locationInView(const UIView* in) const {
    if (m_recent.empty()) return {};
    const CGPoint location = m_recent.back().location;
    return in ? in->convertPoint_fromView(location, nullptr) : location;
}

CGPoint PanReader::velocityInView(const UIView* in) const {
    if (m_recent.size() < 2) return {};
    const Sample& last = m_recent.back();
    // A finger that rested before it left has no speed.
    if (m_lastTime - last.time > velocityWindow) return {};
    const Sample& first = m_recent.front();
    const double seconds = last.time - first.time;
    if (!(seconds > 0)) return {};
    const CGPoint way = differenceInView(first.location, last.location, in);
    return {way.x / seconds, way.y / seconds};
}

} // namespace seat
