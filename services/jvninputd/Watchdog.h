#pragma once

#include "services/common/EventLoop.h"

namespace jvninputd {

// While keyboards are taken the service manager must hear from us, or it ends us and the kernel gives them back. Costs
// wake-ups only then. Without a service manager nothing happens.
class Watchdog {
public:
    explicit Watchdog(services::EventLoop& loop) : m_loop(loop) {}

    void guard(bool keyboardsTaken);

private:
    void report();

    services::EventLoop& m_loop;
    services::EventLoop::Source m_timer;
    bool m_guarding = false;
};

} // namespace jvninputd
