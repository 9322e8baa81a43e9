#pragma once

#include "services/jvnd/Caller.h"
#include "services/jvnd/Connector.h"
#include "services/jvnd/Settings.h"

#include <functional>
#include <vector>

namespace jvnd {

// What each command of the control socket does, and what is answered.
class Commands final : public CommandHandler {
public:
    // What the commands reach beside the connector.
    struct Actions {
        std::function<const Settings&()> settings;
        std::function<void(Color)> setColor;
        std::function<void()> restart; // after this call has returned
        // A frame has come, or goes out; for whoever writes them down. May be empty.
        std::function<void(const Caller&, const JVNControlFrame& asked, const JVNControlFrame* reply)> trace;
    };

    // The connector outlives this object, which hears how its attempts end.
    Commands(Connector& connector, Actions actions);
    ~Commands() override;
    Commands(const Commands&) = delete;
    Commands& operator=(const Commands&) = delete;

    Then handle(Caller& caller, const JVNControlFrame& frame) override;
    void callerGone(Caller& caller) override;
    bool isWaiting(const Caller& caller) const override;

private:
    Then connect(Caller& caller, const JVNControlFrame& frame);
    Then query(Caller& caller, const JVNControlFrame& frame);
    void answer(Caller& caller, const JVNControlFrame& frame, Connector::Result result);
    void reply(Caller& caller, const JVNControlFrame& frame, JVNControlCommand command, std::uint32_t second);
    void ended(Connector::Result result);
    // The controller that is meant by commands that name none.
    Connector::Target storedTarget() const;

    // Who has asked for the connection that is being made, once for each time that it has asked.
    struct Waiter {
        Caller* caller;
        JVNControlFrame frame;
    };

    Connector& m_connector;
    Actions m_actions;
    std::vector<Waiter> m_waiters;
};

} // namespace jvnd
