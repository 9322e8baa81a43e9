#pragma once

#include "platform/uikit/UIControl.h"

#include <functional>
#include <memory>

// Looks at the moment when a control sends an event: what has happened by then, and what has not.
class AtEvent final : public NSObject {
    NS_CLASS(AtEvent)

    static std::shared_ptr<AtEvent> of(UIControl& control, unsigned events, std::function<void()> look);

private:
    void look();

    std::function<void()> m_look;
};
