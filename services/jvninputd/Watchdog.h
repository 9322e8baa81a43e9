#pragma once

#include "services/common/EventLoop.h"

#include <ctime>

namespace jvninputd {

// While keyboards are taken we have to show that we are alive, or we are ended and the kernel gives them back. The
// service manager watches, and says in the journal what it has done; the kernel itself does a second later, also where
// there is no service manager or it is busy. Costs wake-ups only while keyboards are taken.
class Watchdog {
public:
    explicit Watchdog(services::EventLoop& loop);
    ~Watchdog();
    Watchdog(const Watchdog&) = delete;
    Watchdog& operator=(const Watchdog&) = delete;

    void guard(bool keyboardsTaken);

private:
    void report();
    void setDeadline(std::time_t seconds) const;

    services::EventLoop& m_loop;
    services::EventLoop::Source m_timer;
    ::timer_t m_deadline{}; // its end is ours
    bool m_hasDeadline = false;
    bool m_guarding = false;
};

} // namespace jvninputd
