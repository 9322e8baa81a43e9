#include "platform/uikit/UIPanGestureRecognizer.h"

#include "platform/uikit/UIView.h"

#include <cmath>

NS_CLASS_IMPLEMENTATION(UIPanGestureRecognizer, UIGestureRecognizer)

namespace {

constexpr double slop = 8;             // points the finger moves before the gesture begins
constexpr double velocityWindow = 0.1; // seconds that the velocity is taken over

CGPoint minus(CGPoint a, CGPoint b) { return {a.x - b.x, a.y - b.y}; }
double length(CGPoint p) { return std::hypot(p.x, p.y); }

} // namespace

std::shared_ptr<UIPanGestureRecognizer>
UIPanGestureRecognizer::initWithTarget_action(const std::shared_ptr<NSObject>& target, SEL action) {
    return UIGestureRecognizer::initWithTarget_action(target, action) ? self(this) : nullptr;
}

void UIPanGestureRecognizer::touchesBegan_withEvent(const UITouchList& began, UIEvent&) {
    if (!touches().empty()) return; // one finger leads
    follow(began.front());
    m_first = m_origin = began.front()->locationInView(nullptr);
    m_recent.clear();
    remember(*began.front());
}

void UIPanGestureRecognizer::touchesMoved_withEvent(const UITouchList& moved, UIEvent&) {
    if (touches().empty() || moved.front() != touches().front()) return;
    remember(*moved.front());
    if (state() != UIGestureRecognizerStatePossible) return setState(UIGestureRecognizerStateChanged);
    const double distance = length(movement());
    if (distance < slop) return;
    // Counted from the rim of the small circle: what is dragged neither jumps nor lags behind a quick finger.
    m_origin = {m_first.x + movement().x * slop / distance, m_first.y + movement().y * slop / distance};
    setState(UIGestureRecognizerStateBegan);
}

void UIPanGestureRecognizer::beginAtOnce() {
    m_origin = m_first;
    setState(UIGestureRecognizerStateBegan);
}

void UIPanGestureRecognizer::touchesEnded_withEvent(const UITouchList& ended, UIEvent&) {
    if (touches().empty() || ended.front() != touches().front()) return;
    m_lastTime = ended.front()->timestamp();
    // A pan that began with its only movement: nobody has heard yet, with the finger still there, where that led.
    if (state() == UIGestureRecognizerStateBegan) {
        const auto keep = shared_from_this();
        setState(UIGestureRecognizerStateChanged);
        // What it led to may have taken the gesture away.
        if (state() != UIGestureRecognizerStateChanged) return;
    }
    letGoOfTouches();
    setState(state() == UIGestureRecognizerStatePossible ? UIGestureRecognizerStateFailed
                                                         : UIGestureRecognizerStateEnded);
}

void UIPanGestureRecognizer::touchesCancelled_withEvent(const UITouchList& cancelled, UIEvent&) {
    if (touches().empty() || cancelled.front() != touches().front()) return;
    letGoOfTouches();
    setState(state() == UIGestureRecognizerStatePossible ? UIGestureRecognizerStateFailed
                                                         : UIGestureRecognizerStateCancelled);
}

void UIPanGestureRecognizer::reset() { m_recent.clear(); }

void UIPanGestureRecognizer::remember(const UITouch& touch) {
    m_lastTime = touch.timestamp();
    m_recent.push_back({touch.locationInView(nullptr), touch.timestamp()});
    // One sample older than the window stays, so that slow movement has something to be measured against.
    while (m_recent.size() > 2 && m_lastTime - m_recent[1].time > velocityWindow) m_recent.erase(m_recent.begin());
}

CGPoint UIPanGestureRecognizer::movement() const {
    return m_recent.empty() ? CGPoint{} : minus(m_recent.back().location, m_first);
}

CGPoint UIPanGestureRecognizer::differenceInView(CGPoint from, CGPoint to, const UIView* in) const {
    if (!in) return minus(to, from);
    return minus(in->convertPoint_fromView(to, nullptr), in->convertPoint_fromView(from, nullptr));
}

CGPoint UIPanGestureRecognizer::translationInView(const UIView* in) const {
    return m_recent.empty() ? CGPoint{} : differenceInView(m_origin, m_recent.back().location, in);
}

CGPoint UIPanGestureRecognizer::locationInView(const UIView* in) const {
    if (m_recent.empty()) return {};
    const CGPoint location = m_recent.back().location;
    return in ? in->convertPoint_fromView(location, nullptr) : location;
}

CGPoint UIPanGestureRecognizer::velocityInView(const UIView* in) const {
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
