#pragma once

// How host services hear of readable descriptors and of time passing, on the main thread, whoever runs the loop.
// Main thread only, except where a line says otherwise.

#include <cstdint>
#include <functional>
#include <optional>

namespace seat {

using SourceToken = std::uint64_t; // 0 is never given out

// `callback` runs whenever the descriptor is readable (or at its end); it reads without blocking. The descriptor stays
// the caller's, who removes the source before closing it. A callback may remove any source, its own too.
SourceToken addReadableSource(int descriptor, std::function<void()> callback);

// `callback` runs once, when the host clock has moved on by `seconds`; never before addTimer() has returned.
SourceToken addTimer(double seconds, std::function<void()> callback);

// A source or a timer; unknown tokens and 0 are ignored. The callback does not run any more once this has returned.
void removeSource(SourceToken token);

// What a run loop does for the sources. One at a time: the window's loop, or a plain poll loop in tests.
class RunLoopDriver {
public:
    virtual ~RunLoopDriver() = default;
    // From now on readableSourceFired(token) when the descriptor is readable.
    virtual void watchReadable(SourceToken token, int descriptor) = 0;
    virtual void unwatchReadable(SourceToken token) = 0;
    // fireDueTimers() is to be called when platform::CACurrentMediaTime() has reached `deadline`; no deadline: nothing
    // to wake up for. Replaces the deadline before it.
    virtual void setNextDeadline(std::optional<double> deadline) = 0;
};

// Non-owning; told at once of every source and of the next deadline. nullptr leaves the sources unwatched until the
// next driver comes. The driver that is replaced is told to unwatch everything.
void setRunLoopDriver(RunLoopDriver* driver);

// Called by the driver.
void readableSourceFired(SourceToken token);

// Runs the callbacks of all timers that are due now, earliest first; timers added meanwhile wait for the next call.
// Called by the driver, and by whoever moves a held clock.
void fireDueTimers();

// The time of the earliest timer, on the host clock.
std::optional<double> nextTimerDeadline();

} // namespace seat
