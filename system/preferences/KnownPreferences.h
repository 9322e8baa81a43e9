#pragma once

#include "system/preferences/PreferencesFile.h"

#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <time.h>

namespace seat {

// Files above this many bytes are large: to read one, or to write it anew, may take longer than a frame.
inline constexpr std::size_t largePreferencesFile = 64u << 10;

// What a large file held when it was last read, so that a page with many rows reads it once. Any thread.
class KnownPreferences {
public:
    // The value as the file at the path holds it now. Nothing when the file has to be read for that: it is another one,
    // has changed, or the value is one that its reader may change (a dictionary, an array).
    std::optional<id> value(const std::string& path, const std::string& key) const;

    // By the clock of the file's times.
    static timespec now();
    // Keeps what was read, if the file is large and a change of it since would show; what was known of it before is
    // forgotten. `begun`: when the read began; nothing when the lock kept others from writing since then.
    void keep(std::string path, PreferencesFile&& file, const std::optional<timespec>& begun);

private:
    struct File {
        std::string path;
        PreferencesFile file;
    };
    mutable std::mutex m_mutex;
    std::shared_ptr<const File> m_known; // nil: none
};

// True for a value that whoever has it may change: such a one is not given to two.
bool mayBeChanged(const id& value);

} // namespace seat
