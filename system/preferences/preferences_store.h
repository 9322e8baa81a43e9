#pragma once

// The settings framework's preferences: a domain is the file "<domain>.plist" in the phone's preferences folder.
// Any thread.

#include "platform/foundation/id.h"

#include <chrono>
#include <functional>
#include <string>

namespace host {

// How long a write waits for another process that is writing.
inline constexpr std::chrono::milliseconds preferencesPatience{50};

// The file is read afresh. nil when the key, or the file, is absent, or when the file cannot be read (logged once a
// failure, not once a read). A value that is still to be stored comes before the file's.
id preferenceValue(const std::string& domain, const std::string& key);

// Changes one key and keeps what else the file holds as it is by then; nil removes the key. True when it is in the file
// as this returns. Otherwise the reason is logged and the value is kept for the session: this process reads it back,
// each later write to the domain stores it too, and a lock that was merely held for too long is waited for by a worker.
// `storedLater` is called when such a later write has stored it, on the thread that wrote.
bool setPreferenceValue(const std::string& domain, const std::string& key, const id& value,
                        std::function<void()> storedLater = {});

// Tries once more to store what is still kept, waiting up to `patience` for each file. True when nothing is kept any
// more. For the end of the process.
bool storeKeptPreferences(std::chrono::milliseconds patience = preferencesPatience);

} // namespace host
