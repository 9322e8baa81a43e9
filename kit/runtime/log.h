#pragma once

#include <functional>
#include <string_view>

namespace seat {

// Replaces what becomes of a logged line (without its line end). An empty function brings back the default, the seat's
// writeLogLine(). Any thread; the function is called under a lock, on the thread that logs.
void setLogSink(std::function<void(std::string_view line)> sink);

} // namespace seat
