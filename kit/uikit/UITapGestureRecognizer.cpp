#include "platform/uikit/UITapGestureRecognizer.h"

#include "kit/uikit/GestureInternals.h"
#include "kit/uikit/UITouch.h"

#include <cmath>

NS_CLASS_IMPLEMENTATION(UITapGestureRecognizer, UIGestureRecognizer)

namespace {

constexpr double tapSlop = 10; // points a finger may wander

class TapReader final : public seat::GestureReader {
public:
    void began(UIGestureRecognizer& recognizer, const UITouchList& touches, UIEvent& event) override {
        if (event.allTouches().size() > 1 || touches.size() > 1)
            return GestureInternals::setState(recognizer, UIGestureRecognizerStateFailed);
        GestureInternals::follow(recognizer, touches.front());
        m_first = touches.front()->locationInView(nullptr);
    }

    void moved(UIGestureRecognizer& recognizer, const UITouchList& touches, UIEvent&) override {
        const CGPoint now = touches.front()->locationInView(nullptr);
        if (std::hypot(now.x - m_first.x, now.y - m_first.y) > tapSlop)
            GestureInternals::setState(recognizer, UIGestureRecognizerStateFailed);
    }

    void ended(UIGestureRecognizer& recognizer, const UITouchList&, UIEvent&) override {
        GestureInternals::setState(recognizer, UIGestureRecognizerStateEnded);
    }

    void cancelled(UIGestureRecognizer& recognizer, const UITouchList&, UIEvent&) override {
        GestureInternals::setState(recognizer, UIGestureRecognizerStateFailed);
    }

private:
    CGPoint m_first; // where the finger came down, in the window
};

} // namespace

std::shared_ptr<UITapGestureRecognizer>
UITapGestureRecognizer::initWithTarget_action(const std::shared_ptr<NSObject>& target, SEL action) {
    if (!UIGestureRecognizer::initWithTarget_action(target, action)) return nullptr;
    GestureInternals::setReader(*this, std::make_unique<TapReader>());
    return self(this);
}
