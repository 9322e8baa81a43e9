#include "desktop/window/StallWatch.h"

#include "platform/log.h"

#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <string_view>
#include <sys/eventfd.h>
#include <sys/timerfd.h>

namespace {

// What is only slow comes back within two looks, and twice this is less than what somebody who ends the program waits.
constexpr timespec interval{0, 200'000'000};
constexpr int looksAtSlowOne = 2;

seat::StallWatch* theWatch = nullptr;
std::atomic<bool> isToEnd = false;
static_assert(std::atomic<bool>::is_always_lock_free); // a signal's handler writes it

void setTimer(const seat::Descriptor& timer, timespec time) {
    const itimerspec times{time, time};
    ::timerfd_settime(timer.get(), 0, &times, nullptr);
}

// Neither running nor waiting for the processor or a disk.
bool mainThreadSleeps() {
    char path[64];
    char text[512];
    std::snprintf(path, sizeof path, "/proc/self/task/%d/stat", ::getpid());
    const seat::Descriptor file(::open(path, O_RDONLY | O_CLOEXEC));
    const ssize_t length = file ? ::read(file.get(), text, sizeof text) : 0;
    const std::string_view stat(text, length > 0 ? static_cast<std::size_t>(length) : 0);
    const auto name = stat.rfind(") ");
    return name != std::string_view::npos && name + 2 < stat.size() && stat[name + 2] == 'S';
}

const char* displayName() {
    for (const char* const name : {"WAYLAND_DISPLAY", "DISPLAY"})
        if (const char* const value = std::getenv(name); value && *value) return value;
    return "";
}

} // namespace

seat::StallWatch::StallWatch()
    : m_timer(::timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC | TFD_NONBLOCK)),
      m_stop(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    theWatch = this;
    // Signals are the main thread's.
    sigset_t all;
    sigset_t before;
    ::sigfillset(&all);
    ::pthread_sigmask(SIG_SETMASK, &all, &before);
    m_thread = std::thread([this] { watch(); });
    ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

seat::StallWatch::~StallWatch() {
    theWatch = nullptr;
    ::eventfd_write(m_stop.get(), 1);
    m_thread.join();
}

bool seat::StallWatch::begin() {
    if (m_isInside.exchange(true)) return false;
    setTimer(m_timer, interval);
    return true;
}

void seat::StallWatch::end() {
    if (!m_isInside.exchange(false)) return;
    setTimer(m_timer, {});
    if (m_isSaid.exchange(false)) NSLog("the display answers again");
}

void seat::StallWatch::askToEnd() { isToEnd = true; }

void seat::StallWatch::watch() {
    for (;;) {
        pollfd entries[] = {{m_stop.get(), POLLIN, 0}, {m_timer.get(), POLLIN, 0}};
        if (::poll(entries, 2, -1) < 0) continue;
        if (entries[0].revents != 0) return;
        std::uint64_t times = 0;
        if (::read(m_timer.get(), &times, sizeof times) > 0) look();
    }
}

void seat::StallWatch::look() {
    // A main thread that has much to do will come back.
    if (!m_isInside || !mainThreadSleeps() || !m_isInside) {
        m_looks = m_looksSinceEnd = 0;
        return;
    }
    if (isToEnd) ++m_looksSinceEnd;
    if (++m_looks < looksAtSlowOne) return;
    if (!m_isSaid.exchange(true)) NSLog("the display \"%s\" does not answer; the window waits for it", displayName());
    if (m_looksSinceEnd < looksAtSlowOne) return;
    // Nothing can be put in order any more: the thread that could is waiting.
    NSLog("ending without the display");
    ::_exit(EXIT_FAILURE);
}

seat::StallWatch::Section::Section() {
    if (theWatch && theWatch->begin()) m_begun = theWatch;
}

seat::StallWatch::Section::~Section() {
    if (m_begun) m_begun->end();
}
