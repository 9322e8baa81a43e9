#include "platform/uikit/UIResponder.h"

NS_CLASS_IMPLEMENTATION(UIResponder, NSObject)

std::shared_ptr<UIResponder> UIResponder::nextResponder() const { return nullptr; }

void UIResponder::touchesBegan_withEvent(const UITouchList& touches, UIEvent& event) {
    if (const auto next = nextResponder()) next->touchesBegan_withEvent(touches, event);
}

void UIResponder::touchesMoved_withEvent(const UITouchList& touches, UIEvent& event) {
    if (const auto next = nextResponder()) next->touchesMoved_withEvent(touches, event);
}

void UIResponder::touchesEnded_withEvent(const UITouchList& touches, UIEvent& event) {
    if (const auto next = nextResponder()) next->touchesEnded_withEvent(touches, event);
}

void UIResponder::touchesCancelled_withEvent(const UITouchList& touches, UIEvent& event) {
    if (const auto next = nextResponder()) next->touchesCancelled_withEvent(touches, event);
}

bool UIResponder::accessibilityPerformEscape() {
    const auto next = nextResponder();
    return next && next->accessibilityPerformEscape();
}
