#include "platform/uikit/UIGestureRecognizer.h"

#include "kit/uikit/GestureInternals.h"
#include "kit/uikit/TouchDispatcher.h"
#include "platform/foundation/id.h"

#include <algorithm>

NS_CLASS_IMPLEMENTATION(UIGestureRecognizer, NSObject)

namespace {

bool hasBegun(UIGestureRecognizerState state) {
    return state == UIGestureRecognizerStateBegan || state == UIGestureRecognizerStateChanged;
}

} // namespace

UIGestureRecognizer::UIGestureRecognizer() : m_gesture(std::make_unique<State>()) {}
UIGestureRecognizer::~UIGestureRecognizer() = default;

std::shared_ptr<UIGestureRecognizer> UIGestureRecognizer::initWithTarget_action(const std::shared_ptr<NSObject>& target,
                                                                                SEL action) {
    if (!NSObject::init()) return nullptr;
    addTarget_action(target, action);
    return self(this);
}

void UIGestureRecognizer::addTarget_action(const std::shared_ptr<NSObject>& target, SEL action) {
    if (target && action) m_gesture->targets.push_back({target, action});
}

UIGestureRecognizerState UIGestureRecognizer::state() const { return m_gesture->state; }
std::shared_ptr<UIView> UIGestureRecognizer::view() const { return m_gesture->view.lock(); }
bool UIGestureRecognizer::isEnabled() const { return m_gesture->enabled; }

void UIGestureRecognizer::setEnabled(bool enabled) {
    m_gesture->enabled = enabled;
    if (!enabled) GestureInternals::cancel(*this);
}

std::size_t UIGestureRecognizer::numberOfTouches() const { return m_gesture->touches.size(); }

CGPoint UIGestureRecognizer::locationOfTouch_inView(std::size_t index, const UIView* view) const {
    return index < m_gesture->touches.size() ? m_gesture->touches[index]->locationInView(view) : CGPoint{};
}

CGPoint UIGestureRecognizer::locationInView(const UIView* view) const { return locationOfTouch_inView(0, view); }

void UIGestureRecognizer::touchesBegan_withEvent(const UITouchList&, UIEvent&) {}
void UIGestureRecognizer::touchesMoved_withEvent(const UITouchList&, UIEvent&) {}
void UIGestureRecognizer::touchesEnded_withEvent(const UITouchList&, UIEvent&) {}
void UIGestureRecognizer::touchesCancelled_withEvent(const UITouchList&, UIEvent&) {}
bool UIGestureRecognizer::shouldBegin() const { return true; }
void UIGestureRecognizer::reset() {}

void UIGestureRecognizer::setState(UIGestureRecognizerState next) {
    const auto keep = shared_from_this();
    const bool begins = m_gesture->state == UIGestureRecognizerStatePossible &&
                        (next == UIGestureRecognizerStateBegan || next == UIGestureRecognizerStateEnded);
    if (begins && (!shouldBegin() || (m_gesture->dispatcher && !m_gesture->dispatcher->claim(*this))))
        next = UIGestureRecognizerStateFailed;
    m_gesture->state = next;
    if (next == UIGestureRecognizerStateFailed) letGoOfTouches();
    if (next == UIGestureRecognizerStateFailed || next == UIGestureRecognizerStatePossible) return;
    // An action may add targets, or disable or remove this recogniser.
    for (const auto& [weak, action] : std::vector(m_gesture->targets))
        if (const auto target = weak.lock()) objc_msgSend(*target, action, {id(self(this))});
}

const UITouchList& UIGestureRecognizer::touches() const { return m_gesture->touches; }
void UIGestureRecognizer::follow(const std::shared_ptr<UITouch>& touch) { m_gesture->touches.push_back(touch); }
void UIGestureRecognizer::letGoOfTouches() { m_gesture->touches.clear(); }

void GestureInternals::setView(UIGestureRecognizer& recognizer, const std::shared_ptr<UIView>& view) {
    state(recognizer).view = view;
}

void GestureInternals::setDispatcher(UIGestureRecognizer& recognizer, TouchDispatcher* dispatcher) {
    state(recognizer).dispatcher = dispatcher;
}

void GestureInternals::deliver(UIGestureRecognizer& recognizer, const UITouchList& touches, UIEvent& event) {
    const auto now = state(recognizer).state;
    if (!recognizer.isEnabled() || (now != UIGestureRecognizerStatePossible && !hasBegun(now))) return;
    switch (touches.front()->phase()) {
    case UITouchPhase::Began:
        recognizer.touchesBegan_withEvent(touches, event);
        break;
    case UITouchPhase::Stationary:
    case UITouchPhase::Moved:
        recognizer.touchesMoved_withEvent(touches, event);
        break;
    case UITouchPhase::Ended:
        recognizer.touchesEnded_withEvent(touches, event);
        break;
    case UITouchPhase::Cancelled:
        recognizer.touchesCancelled_withEvent(touches, event);
        break;
    }
}

void GestureInternals::fail(UIGestureRecognizer& recognizer) {
    if (recognizer.state() == UIGestureRecognizerStatePossible) recognizer.setState(UIGestureRecognizerStateFailed);
}

void GestureInternals::cancel(UIGestureRecognizer& recognizer) {
    const auto keep = recognizer.shared_from_this();
    if (hasBegun(recognizer.state())) {
        recognizer.letGoOfTouches();
        recognizer.setState(UIGestureRecognizerStateCancelled);
    } else if (state(recognizer).dispatcher) {
        fail(recognizer);
    }
}

void GestureInternals::touchesAreOver(UIGestureRecognizer& recognizer) {
    if (hasBegun(recognizer.state())) cancel(recognizer); // a gesture that did not notice its end
    state(recognizer).dispatcher = nullptr;
    recognizer.letGoOfTouches();
    state(recognizer).state = UIGestureRecognizerStatePossible;
    recognizer.reset();
}
