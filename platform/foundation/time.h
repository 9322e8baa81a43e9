#pragma once

// The one clock. Animations, gesture time-outs and the logic read it; a test can hold it (kit/dispatch/ManualClock.h).

namespace platform {

struct timeval {
    long tv_sec = 0;
    long tv_usec = 0;
};

// The time of day; it may go back. Returns 0.
int gettimeofday(timeval* now);

// Seconds on a clock that never goes back, for measuring durations.
double CACurrentMediaTime();

} // namespace platform
