#pragma once

// The settings framework's preferences, which kit/seat.h declares: what is on its way into the files, and how it ends.

#include "kit/seat.h"

#include <chrono>
#include <memory>
#include <optional>
#include <span>
#include <string>

class NSMutableDictionary;

namespace seat {

// Stands for the whole file of a domain as setPreferenceValue() does for one of its keys: what is on its way there is
// read back from now on, and what others write meanwhile is replaced. Any thread.
PreferenceWrite setPreferencesFile(const std::string& domain, std::span<const std::uint8_t> bytes);

// The file as it will be when everything that waits is in it; nothing when nothing waits. Any thread.
std::optional<std::shared_ptr<NSMutableDictionary>> pendingPreferences(const std::string& domain);

// The domain whose file stands at a path of the phone's; empty when it is none.
std::string preferencesDomainOfFile(const std::string& logicalPath);

// For the end of the process: waits until everything is in its file, but no longer than `timeout`; what is not there
// by then is logged as lost. True when nothing is.
bool awaitPendingPreferences(std::chrono::milliseconds timeout = std::chrono::seconds(2));

} // namespace seat
