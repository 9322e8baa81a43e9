#pragma once

#include "services/common/Bus.h"
#include "services/jvndiscovery/Discovery.h"

namespace jvndiscovery {

// Tells the page how far things are. A page, or a session bus, that is not there is said once, and changes nothing.
class PageMessenger {
public:
    explicit PageMessenger(services::EventLoop& loop);

    // In the order of the calls; does not wait.
    void report(State state);
    // `done` is called when the page has answered all of it, or is known not to be there.
    void whenDelivered(std::function<void()> done) { m_bus.whenQuiet(std::move(done)); }
    // False while the session bus has not taken us yet, or never will.
    bool isConnected() const { return m_bus.isUp(); }

private:
    services::Bus m_bus;
    std::vector<services::EventLoop::Source> m_calls;
};

} // namespace jvndiscovery
