#include "platform/uikit/UIGestureRecognizer.h"

#include "kit/uikit/GestureInternals.h"
#include "kit/uikit/TouchDispatcher.h"
#include "platform/foundation/id.h"

#include <utility>

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
    m_gesture->target = target;
    m_gesture->action = action;
    return self(this);
}

UIGestureRecognizerState UIGestureRecognizer::state() const { return m_gesture->state; }
std::shared_ptr<UIView> UIGestureRecognizer::view() const { return m_gesture->view.lock(); }

void UIGestureRecognizer::setEnabled(bool enabled) {
    m_gesture->enabled = enabled;
    if (!enabled) GestureInternals::cancel(*this);
}

std::size_t UIGestureRecognizer::numberOfTouches() const { return m_gesture->touches.size(); }

CGPoint UIGestureRecognizer::locationOfTouch_inView(std::size_t index, const UIView* view) const {
    return index < m_gesture->touches.size() ? m_gesture->touches[index]->locationInView(view) : CGPoint{};
}

void GestureInternals::setState(UIGestureRecognizer& recognizer, UIGestureRecognizerState next) {
    const auto keep = recognizer.shared_from_this();
    State& mine = state(recognizer);
    const bool begins = mine.state == UIGestureRecognizerStatePossible &&
                        (next == UIGestureRecognizerStateBegan || next == UIGestureRecognizerStateEnded);
    if (begins && ((mine.reader && !mine.reader->shouldBegin(recognizer)) ||
                   (mine.dispatcher && !mine.dispatcher->claim(recognizer))))
        next = UIGestureRecognizerStateFailed;
    mine.state = next;
    if (next == UIGestureRecognizerStateFailed) letGoOfTouches(recognizer);
    if (next == UIGestureRecognizerStateFailed || next == UIGestureRecognizerStatePossible) return;
    if (const auto target = mine.target.lock(); target && mine.action) objc_msgSend(*target, mine.action, {id(keep)});
}

void GestureInternals::setReader(UIGestureRecognizer& recognizer, std::unique_ptr<seat::GestureReader> reader) {
    state(recognizer).reader = std::move(reader);
}

void GestureInternals::follow(UIGestureRecognizer& recognizer, const std::shared_ptr<UITouch>& touch) {
    state(recognizer).touches.push_back(touch);
}

void GestureInternals::letGoOfTouches(UIGestureRecognizer& recognizer) { state(recognizer).touches.clear(); }

void GestureInternals::setView(UIGestureRecognizer& recognizer, const std::shared_ptr<UIView>& view) {
    state(recognizer).view = view;
}

void GestureInternals::setDispatcher(UIGestureRecognizer& recognizer, TouchDispatcher* dispatcher) {
    state(recognizer).dispatcher = dispatcher;
}

void GestureInternals::deliver(UIGestureRecognizer& recognizer, const UITouchList& touches, UIEvent& event) {
    const auto& [now, reader] = std::pair(state(recognizer).state, state(recognizer).reader.get());
    if (!reader || !state(recognizer).enabled || (now != UIGestureRecognizerStatePossible && !hasBegun(now))) return;
    switch (touches.front()->phase()) {
    case UITouchPhase::Began:
        reader->began(recognizer, touches, event);
        break;
    case UITouchPhase::Stationary:
    case UITouchPhase::Moved:
        reader->moved(recognizer, touches, event);
        break;
    case UITouchPhase::Ended:
        reader->ended(recognizer, touches, event);
        break;
    case UITouchPhase::Cancelled:
        reader->cancelled(recognizer, touches, event);
        break;
    }
}

void GestureInternals::fail(UIGestureRecognizer& recognizer) {
    if (recognizer.state() == UIGestureRecognizerStatePossible) setState(recognizer, UIGestureRecognizerStateFailed);
}

void GestureInternals::cancel(UIGestureRecognizer& recognizer) {
    const auto keep = recognizer.shared_from_this();
    if (hasBegun(recognizer.state())) {
        letGoOfTouches(recognizer);
        setState(recognizer, UIGestureRecognizerStateCancelled);
    } else if (state(recognizer).dispatcher) {
        fail(recognizer);
    }
}

void GestureInternals::touchesAreOver(UIGestureRecognizer& recognizer) {
    if (hasBegun(recognizer.state())) cancel(recognizer); // a gesture that did not notice its end
    state(recognizer).dispatcher = nullptr;
    letGoOfTouches(recognizer);
    state(recognizer).state = UIGestureRecognizerStatePossible;
    if (state(recognizer).reader) state(recognizer).reader->reset();
}
