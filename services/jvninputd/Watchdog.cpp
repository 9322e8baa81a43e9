#include "services/jvninputd/Watchdog.h"

#include "services/common/log.h"

#include <cerrno>
#include <csignal>
#include <cstring>
#include <systemd/sd-daemon.h>

namespace jvninputd {

namespace {

// A keyboard is back within five seconds: the manager ends us after three, the kernel after four.
constexpr const char* begin = "WATCHDOG_USEC=3000000\nWATCHDOG=1";
constexpr const char* end = "WATCHDOG_USEC=0";
constexpr std::time_t lastSeconds = 4;
constexpr auto interval = std::chrono::seconds(1);

} // namespace

Watchdog::Watchdog(services::EventLoop& loop) : m_loop(loop) {
    // This signal alone ends a process that is stopped. The clock stands still while the computer is suspended.
    ::sigevent signal{};
    signal.sigev_notify = SIGEV_SIGNAL;
    signal.sigev_signo = SIGKILL;
    m_hasDeadline = ::timer_create(CLOCK_MONOTONIC, &signal, &m_deadline) == 0;
    if (!m_hasDeadline) services::log("making the watchdog's timer: %s", std::strerror(errno));
}

Watchdog::~Watchdog() {
    if (m_hasDeadline) ::timer_delete(m_deadline);
}

void Watchdog::guard(bool keyboardsTaken) {
    if (keyboardsTaken == m_guarding) return;
    m_guarding = keyboardsTaken;
    ::sd_notify(0, m_guarding ? begin : end);
    if (m_guarding) return report();
    m_timer.reset();
    setDeadline(0);
}

void Watchdog::report() {
    ::sd_notify(0, "WATCHDOG=1");
    setDeadline(lastSeconds);
    m_timer = m_loop.after(interval, [this] { report(); });
}

// From now on; 0 for none.
void Watchdog::setDeadline(std::time_t seconds) const {
    ::itimerspec time{};
    time.it_value.tv_sec = seconds;
    if (m_hasDeadline) ::timer_settime(m_deadline, 0, &time, nullptr);
}

} // namespace jvninputd
