#include "kit/seat.h"

#include <atomic>
#include <time.h>

namespace {

timespec read(clockid_t clock) {
    timespec now{};
    ::clock_gettime(clock, &now);
    return now;
}

std::atomic<const seat::ClockSource*> replacement = nullptr;

} // namespace

void seat::setClockSource(const ClockSource* source) { replacement = source; }

bool seat::clockIsHeld() { return replacement != nullptr; }

int platform::gettimeofday(timeval* now) {
    if (!now) return 0;
    if (const auto* const source = replacement.load()) {
        *now = source->timeOfDay();
        return 0;
    }
    const timespec time = read(CLOCK_REALTIME);
    *now = {time.tv_sec, time.tv_nsec / 1000};
    return 0;
}

double platform::CACurrentMediaTime() {
    if (const auto* const source = replacement.load()) return source->mediaTime();
    const timespec time = read(CLOCK_MONOTONIC);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}
