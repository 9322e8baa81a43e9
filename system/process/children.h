#pragma once

#include "system/process/spawn.h"

#include <chrono>
#include <functional>
#include <string>

namespace seat {

struct ChildEnd {
    int exitCode = -1;         // -1: a signal ended it
    int signal = 0;            // which one
    bool wasSignalled = false; // by us, before it ended
    std::string description;   // "ended with 1", "was ended by signal 9"
};

// Watches a child on the main run loop and reaps it as soon as it has ended; until then it can be signalled. What a
// tool writes goes into our log, line by line, the first `mostLoggedLines` of it; how it ended is logged too.
// `couldNotLoad` hears, with the error number, when its program could not be loaded after all; `ended` hears of its
// end, once it is reaped. Both may be nil. Main thread.
void adoptChild(SpawnedChild child, std::function<void(int)> couldNotLoad,
                std::function<void(const ChildEnd& end)> ended = {});

// Hears a sentence when a child has been started or has ended; nil for nobody. Main thread.
void setChildListener(std::function<void(const std::string& sentence)> listener);

inline constexpr int mostLoggedLines = 100;

// To the child, a tool's own children included. -1 when it is no child of ours, or has been reaped. Any thread.
int signalChild(int identifier, int signal);

// For the end of the process: tools that still run are interrupted, killed when they have not ended by `grace`, and
// reaped. Waits no longer than that. Main thread.
void endTools(std::chrono::milliseconds grace = std::chrono::milliseconds(500));

} // namespace seat
