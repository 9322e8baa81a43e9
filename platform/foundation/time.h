#pragma once

// The one clock. Animations, gesture time-outs and the logic read it; a test can hold it (kit/dispatch/ManualClock.h).

namespace platform {

struct timeval {
    long tv_sec = 0;
    long tv_usec = 0;
};

// The time of day since 1970 in UTC, `tv_usec` from 0 to 999,999; it may go back. Returns 0. Any thread.
int gettimeofday(timeval* now);

// Seconds on a clock that never goes back, for measuring durations; where it begins means nothing. Any thread.
double CACurrentMediaTime();

} // namespace platform
