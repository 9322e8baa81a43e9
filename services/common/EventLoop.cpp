#include "services/common/EventLoop.h"

#include "services/common/EventLoop_urgent.h"
#include "services/common/log.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <sys/epoll.h>
#include <sys/signalfd.h>
#include <systemd/sd-event.h>
#include <utility>

namespace services {

// A watch that the library keeps. Its callback is shared with a call that is under way, which may destroy the handle.
class EventLoop::SystemSource final : public Handle {
public:
    explicit SystemSource(std::function<void(std::uint32_t)> call)
        : m_call(std::make_shared<std::function<void(std::uint32_t)>>(std::move(call))) {}
    ~SystemSource() override { ::sd_event_source_disable_unref(m_source); }
    SystemSource(const SystemSource&) = delete;
    SystemSource& operator=(const SystemSource&) = delete;

    static int ready(::sd_event_source*, int, std::uint32_t events, void* self) {
        static_cast<SystemSource*>(self)->run(events);
        return 0;
    }
    static int signalled(::sd_event_source*, const ::signalfd_siginfo*, void* self) {
        static_cast<SystemSource*>(self)->run(0);
        return 0;
    }

    ::sd_event_source* m_source = nullptr;

private:
    void run(std::uint32_t events) const {
        const auto call = m_call;
        (*call)(events);
    }

    std::shared_ptr<std::function<void(std::uint32_t)>> m_call;
};

class EventLoop::Timer final : public Handle {
public:
    Timer(EventLoop& loop, TimerKey key) : m_loop(loop), m_key(key) {}
    ~Timer() override { m_loop.m_timers.erase(m_key); }
    Timer(const Timer&) = delete;
    Timer& operator=(const Timer&) = delete;

private:
    EventLoop& m_loop;
    TimerKey m_key;
};

EventLoop::EventLoop(const Clock& clock) : m_clock(clock) {
    if (const int result = ::sd_event_new(&m_event); result < 0) log("event loop: %s", std::strerror(-result));
}

EventLoop::~EventLoop() { ::sd_event_unref(m_event); }

EventLoop::Source EventLoop::watch(int descriptor, std::uint32_t events, std::function<void(std::uint32_t)> ready) {
    auto source = std::make_unique<SystemSource>(std::move(ready));
    const int result =
        ::sd_event_add_io(m_event, &source->m_source, descriptor, events, SystemSource::ready, source.get());
    if (result >= 0) return source;
    log("watching descriptor %d: %s", descriptor, std::strerror(-result));
    return nullptr;
}

EventLoop::Source EventLoop::watchUrgently(int descriptor, std::uint32_t events,
                                           std::function<void(std::uint32_t)> ready, Rank rank) {
    if (!m_urgent) m_urgent = std::make_shared<UrgentWatches>(::sd_event_get_fd(m_event));
    if (auto source = m_urgent->add(descriptor, events, std::move(ready), rank)) return source;
    log("watching descriptor %d: %s", descriptor, std::strerror(errno));
    return nullptr;
}

int EventLoop::turn(std::uint64_t microseconds) {
    const auto left = untilNextTimer();
    // By turns with all else, so that neither keeps the other from being dealt with.
    m_isTimersTurn = left == 0 && !m_isTimersTurn;
    if (!m_isTimersTurn) return waitAndDispatch(std::min(microseconds, left));
    fireDueTimers();
    return 0;
}

int EventLoop::waitAndDispatch(std::uint64_t microseconds) {
    if (!m_urgent || m_urgent->isEmpty()) return ::sd_event_run(m_event, microseconds);
    int result = ::sd_event_prepare(m_event);
    if (result == 0) {
        if (!m_urgent->run(microseconds)) return -errno;
        result = ::sd_event_wait(m_event, 0);
    }
    return result > 0 ? ::sd_event_dispatch(m_event) : result;
}

EventLoop::Source EventLoop::onSignal(int signal, Callback arrived) {
    ::sigset_t set;
    ::sigemptyset(&set);
    ::sigaddset(&set, signal);
    ::sigprocmask(SIG_BLOCK, &set, nullptr);
    auto source = std::make_unique<SystemSource>([arrived = std::move(arrived)](std::uint32_t) { arrived(); });
    const int result = ::sd_event_add_signal(m_event, &source->m_source, signal, SystemSource::signalled, source.get());
    if (result >= 0) return source;
    log("watching signal %d: %s", signal, std::strerror(-result));
    return nullptr;
}

EventLoop::Source EventLoop::after(std::chrono::microseconds delay, Callback due) {
    const TimerKey key{now() + delay, ++m_timersMade};
    m_timers.emplace(key, std::make_shared<Callback>(std::move(due)));
    return std::make_unique<Timer>(*this, key);
}

std::optional<Moment> EventLoop::nextTimer() const {
    if (m_timers.empty()) return std::nullopt;
    return m_timers.begin()->first.due;
}

// The time to wait is said with each wait: a timer of the system's would have to be set and unset for each connection.
std::uint64_t EventLoop::untilNextTimer() const {
    if (m_timers.empty()) return UINT64_MAX;
    const auto left = m_timers.begin()->first.due - now();
    if (left <= Moment::zero()) return 0;
    // While time is held, whoever holds it fires what comes later.
    return m_clock.runsByItself() ? static_cast<std::uint64_t>(left.count()) : UINT64_MAX;
}

void EventLoop::fireDueTimers() {
    const TimerKey last{now(), m_timersMade};
    for (auto first = m_timers.begin(); first != m_timers.end(); first = m_timers.begin()) {
        // A timer of zero that a callback makes has a later number, and stands behind `last` or is left for next time.
        while (first != m_timers.end() && first->first.number > last.number) ++first;
        if (first == m_timers.end() || first->first.due > last.due) break;
        const auto call = first->second;
        m_timers.erase(first);
        (*call)();
    }
}

int EventLoop::run() {
    m_code.reset();
    while (!m_code) {
        const int result = turn(UINT64_MAX);
        if (result >= 0) continue;
        log("event loop: %s", std::strerror(-result));
        return 1;
    }
    return *m_code;
}

void EventLoop::quit(int code) { m_code = code; }

bool EventLoop::runUntil(const std::function<bool()>& done, std::chrono::milliseconds limit) {
    using Steady = std::chrono::steady_clock;
    const auto end = Steady::now() + limit;
    while (!done()) {
        const auto left = std::chrono::ceil<std::chrono::microseconds>(end - Steady::now()).count();
        if (left <= 0 || turn(static_cast<std::uint64_t>(left)) < 0) return done();
    }
    return true;
}

} // namespace services
