#pragma once

#include <cstdint>
#include <functional>
#include <string_view>

namespace services {

// One line for each failure: the operation, the object, the reason. Never a key code typed, never a whole Bluetooth
// address. Goes to the standard error, which the service manager puts into the journal; nothing waits for whoever reads
// there. Control characters become spaces. The same line again within a minute is counted instead, and the count is
// said with its next writing: no timer runs for it, and nobody fills a disk with it. One thread.
[[gnu::format(printf, 1, 2)]] void log(const char* format, ...);

// What stands before each line, followed by a colon: the program's name. A literal, or something that lives as long.
void setLogName(const char* name);

// Replaces what becomes of a line (without its end and the program's name). An empty function brings back the standard
// error, and forgets what has been counted.
void setLogSink(std::function<void(std::string_view line)> sink);

} // namespace services
