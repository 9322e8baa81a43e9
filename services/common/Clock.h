#pragma once

#include <chrono>

namespace services {

// Time that never goes back, since some moment before the program's start.
using Moment = std::chrono::microseconds;

// Where an event loop takes its time from. The system's is the monotonic clock; a test brings one that it holds.
class Clock {
public:
    virtual ~Clock() = default;
    virtual Moment now() const = 0;
    // True when time passes by itself, so that the loop has to wake up for its timers. Of a clock that is held, whoever
    // moves it calls EventLoop::fireDueTimers().
    virtual bool runsByItself() const = 0;

    static const Clock& system();
};

} // namespace services
