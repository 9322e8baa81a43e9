#pragma once

#include "services/common/Clock.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>

struct sd_event;

namespace services {

// The one loop of a service: descriptors, timers, signals, and through raw() the bus connections of the same library.
// One thread, from creation to destruction. It sleeps without any wake-up while nothing happens.
//
// Every watch lives as long as its handle. A callback may destroy any handle, its own too, and may make new ones.
class EventLoop {
public:
    // A watch, a timer or a call that is put off; destroying it ends it, and its callback does not run any more.
    class Handle {
    public:
        virtual ~Handle() = default;
    };
    using Source = std::unique_ptr<Handle>;
    using Callback = std::function<void()>;

    // The clock must outlive the loop.
    explicit EventLoop(const Clock& clock = Clock::system());
    ~EventLoop();
    EventLoop(const EventLoop&) = delete;
    EventLoop& operator=(const EventLoop&) = delete;

    // `ready` is given the events (EPOLLIN, EPOLLOUT ...) that have come; level-triggered, so it reads or writes
    // without blocking until nothing is left. EPOLLHUP and EPOLLERR always come. The descriptor stays the caller's, who
    // ends the watch before closing it. nullptr, logged, when the system has no room for it.
    [[nodiscard]] Source watch(int descriptor, std::uint32_t events, std::function<void(std::uint32_t)> ready);
    // As watch(), but first of all that is ready, and without the way through the library: for what somebody waits for.
    // Of those that are ready at the same moment the first in rank come first.
    enum class Rank { First, Usual };
    [[nodiscard]] Source watchUrgently(int descriptor, std::uint32_t events, std::function<void(std::uint32_t)> ready,
                                       Rank rank = Rank::Usual);
    // Once, when the clock has moved on by `delay`; never before after() has returned.
    [[nodiscard]] Source after(std::chrono::microseconds delay, Callback due);
    // Once, as soon as the loop comes round; in the order of the calls.
    [[nodiscard]] Source soon(Callback call) { return after(std::chrono::microseconds(0), std::move(call)); }
    // The signal comes to `arrived` instead of ending the process, from now until the process's end: it stays blocked
    // when the handle goes. To be called before there are threads.
    [[nodiscard]] Source onSignal(int signal, Callback arrived);

    // Until quit(), whose code it gives; 1 when the loop itself fails.
    int run();
    void quit(int code);
    // Lets the loop go on until `done` holds or `limit` of real time is over; says whether it holds. For the end of a
    // program and for tests.
    bool runUntil(const std::function<bool()>& done, std::chrono::milliseconds limit = std::chrono::seconds(10));

    Moment now() const { return m_clock.now(); }
    // Runs what is due, earliest first; timers made meanwhile wait. For whoever holds the clock.
    void fireDueTimers();
    // The earliest timer, so that a held clock can stop at each.
    std::optional<Moment> nextTimer() const;

    // For sd_bus_attach_event() and the like.
    ::sd_event* raw() const { return m_event; }

private:
    class SystemSource;
    class UrgentSource;
    class UrgentWatches;
    class Timer;
    struct TimerKey {
        Moment due;
        std::uint64_t number; // in the order of the calls
        auto operator<=>(const TimerKey&) const = default;
    };

    // Waits for something to happen, or for the next timer, and deals with it; what sd_event_run() gives.
    int turn(std::uint64_t microseconds);
    int waitAndDispatch(std::uint64_t microseconds);
    std::uint64_t untilNextTimer() const; // microseconds; UINT64_MAX: none comes by itself

    const Clock& m_clock;
    ::sd_event* m_event = nullptr;
    std::map<TimerKey, std::shared_ptr<Callback>> m_timers;
    std::uint64_t m_timersMade = 0;
    bool m_isTimersTurn = false;
    std::optional<int> m_code;
    std::shared_ptr<UrgentWatches> m_urgent; // none before the first
};

} // namespace services
