#include "app/help/ActionTarget.h"

#include "platform/runtime/method.h"

#include <utility>

namespace app {

NS_CLASS_IMPLEMENTATION(ActionTarget, NSObject, method<&ActionTarget::run>("run"))

std::shared_ptr<ActionTarget> ActionTarget::initWithAction(std::function<void()> action) {
    m_action = std::move(action);
    return self(this);
}

void ActionTarget::run() {
    const auto action = m_action; // it may take the control away
    if (action) action();
}

} // namespace app
