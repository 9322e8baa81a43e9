#include "services/jvninputd/Watchdog.h"

#include <systemd/sd-daemon.h>

namespace jvninputd {

namespace {

// A service that stands still is ended after three seconds, so that the keyboard is back within five.
constexpr const char* begin = "WATCHDOG_USEC=3000000\nWATCHDOG=1";
constexpr const char* end = "WATCHDOG_USEC=0";
constexpr auto interval = std::chrono::seconds(1);

} // namespace

void Watchdog::guard(bool keyboardsTaken) {
    if (keyboardsTaken == m_guarding) return;
    m_guarding = keyboardsTaken;
    // sd_notify says 0 when nobody wants to hear.
    if (::sd_notify(0, m_guarding ? begin : end) <= 0 || !m_guarding) return m_timer.reset();
    m_timer = m_loop.after(interval, [this] { report(); });
}

void Watchdog::report() {
    ::sd_notify(0, "WATCHDOG=1");
    m_timer = m_loop.after(interval, [this] { report(); });
}

} // namespace jvninputd
