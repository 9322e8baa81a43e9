#pragma once

#include "system/process/spawn.h"

#include <functional>
#include <string>

namespace seat {

// Watches a child on the main run loop and reaps it as soon as it has ended; until then it can be signalled.
// `couldNotLoad` hears, with the error number, when its program could not be loaded after all. Main thread.
void adoptChild(SpawnedChild child, std::function<void(int)> couldNotLoad);

// Hears a sentence when a child has been started or has ended; nil for nobody. Main thread.
void setChildListener(std::function<void(const std::string& sentence)> listener);

// -1 when it is no child of ours, or has been reaped. Any thread.
int signalChild(int identifier, int signal);

} // namespace seat
