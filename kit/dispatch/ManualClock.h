#pragma once

#include "kit/seat.h"

#include <atomic>
#include <cstdint>

namespace seat {

// Holds the one clock while it lives: time passes only by advance(). Made, moved and destroyed on the main thread; read
// from any.
class ManualClock final : public ClockSource {
public:
    ManualClock();
    ~ManualClock() override;
    ManualClock(const ManualClock&) = delete;
    ManualClock& operator=(const ManualClock&) = delete;

    // Moves both clocks on. Timers that come due fire on the way, each at its own time, earliest first.
    void advance(double seconds);
    // The time of day may jump, also back; the other clock does not follow.
    void setTimeOfDay(platform::timeval time);

    double mediaTime() const override { return m_mediaTime; }
    platform::timeval timeOfDay() const override;

private:
    void moveTo(double mediaTime);

    std::atomic<double> m_mediaTime = 1000;
    std::atomic<std::int64_t> m_microseconds = 1'700'000'000'000'000; // since 1970
};

} // namespace seat
