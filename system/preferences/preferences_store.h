#pragma once

// The settings framework's preferences, which kit/seat.h declares, and how they end. Any thread.

#include "kit/seat.h"

#include <chrono>

namespace seat {

// How long a write waits for another process that is writing.
inline constexpr std::chrono::milliseconds preferencesTimeout{50};

// Tries once more to store what is still kept, waiting up to `timeout` for each file. True when nothing is kept any
// more. For the end of the process.
bool storeKeptPreferences(std::chrono::milliseconds timeout = preferencesTimeout);

} // namespace seat
