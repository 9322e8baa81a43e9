#pragma once

#include "platform/runtime/NSObject.h"

#include <functional>
#include <memory>

namespace app {

// Runs a function for a control: its action is "run".
class ActionTarget final : public NSObject {
    NS_CLASS(ActionTarget)
public:
    std::shared_ptr<ActionTarget> initWithAction(std::function<void()> action);

private:
    ActionTarget() = default;
    void run();

    std::function<void()> m_action;
};

} // namespace app
