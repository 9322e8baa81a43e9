#include "kit/dispatch/ManualClock.h"

#include "kit/dispatch/run_loop_sources.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr std::int64_t microsecondsASecond = 1'000'000;

}

seat::ManualClock::ManualClock() { setClockSource(this); }
seat::ManualClock::~ManualClock() { setClockSource(nullptr); }

void seat::ManualClock::advance(double seconds) {
    const double end = m_mediaTime + std::max(seconds, 0.0);
    for (auto next = nextTimerDeadline(); next && *next <= end; next = nextTimerDeadline()) {
        moveTo(std::max(*next, mediaTime()));
        fireDueTimers();
    }
    moveTo(end);
}

void seat::ManualClock::moveTo(double mediaTime) {
    m_microseconds += std::llround((mediaTime - m_mediaTime) * static_cast<double>(microsecondsASecond));
    m_mediaTime = mediaTime;
}

void seat::ManualClock::setTimeOfDay(platform::timeval time) {
    m_microseconds = time.tv_sec * microsecondsASecond + time.tv_usec;
}

platform::timeval seat::ManualClock::timeOfDay() const {
    const std::int64_t now = m_microseconds;
    return {now / microsecondsASecond, now % microsecondsASecond};
}
