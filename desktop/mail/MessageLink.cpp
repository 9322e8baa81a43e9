#include "desktop/mail/MessageLink.h"

#include "kit/uikit/appearance.h"
#include "platform/runtime/method.h"
#include "platform/uikit/UIApplication.h"

#include <utility>

namespace seat {

NS_CLASS_IMPLEMENTATION(MessageLink, UIControl, method<&MessageLink::opened>("opened"))

MessageLink::~MessageLink() = default;

std::shared_ptr<MessageLink> MessageLink::initWithText_address(std::string text, std::string address) {
    if (!UIControl::init()) return nullptr;
    m_address = std::move(address);
    setAccessibilityLabel(std::move(text));
    layer()->setCornerRadius(4);
    addTarget_action_forControlEvents(self(this), "opened", UIControlEventTouchUpInside);
    return self(this);
}

void MessageLink::setHighlighted(bool highlighted) {
    if (highlighted == isHighlighted()) return;
    UIControl::setHighlighted(highlighted);
    setBackgroundColor(highlighted ? appearance::indicatorColor() : nullptr);
}

bool MessageLink::accessibilityActivate() {
    sendActionsForControlEvents(UIControlEventTouchUpInside);
    return true;
}

void MessageLink::opened() { UIApplication::sharedApplication()->openURL(m_address); }

} // namespace seat
