#pragma once

// Reading one preferences file as it is now.

#include "platform/foundation/NSDictionary.h"

#include <memory>
#include <string>
#include <sys/stat.h>

namespace seat {

struct PreferencesFile {
    enum class State {
        Missing,
        Good,
        Damaged,   // a file, but no dictionary can be read from it
        TooLarge,  // beyond the bounds of what is read: nobody can say whether it is damaged
        Unreadable // nobody can say what is in it: no file, or not ours to read
    };
    State state = State::Missing;
    std::shared_ptr<NSMutableDictionary> values; // Good: what it holds; nil otherwise
    std::string reason;                          // Damaged, TooLarge, Unreadable
    struct stat status {};                       // Good, Damaged: what was read

    // Never waits: a pipe or a device in the file's place is not opened for reading its content.
    static PreferencesFile read(int folder, const std::string& name);
    // The same file with the same content stands there still, as far as the file system can tell.
    bool isUnchanged(int folder, const std::string& name) const;
};

} // namespace seat
