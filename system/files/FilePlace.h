#pragma once

#include "system/files/Descriptor.h"

#include <string>
#include <sys/stat.h>

namespace seat {

// Where a file stands, looked for once: the folder stays open, so that what is done later happens in the same one.
// A link in the file's place is followed if it and what it leads to are this user's; the place is then the target's.
struct FilePlace {
    Descriptor folder;
    std::string name;
    bool exists = false;
    struct stat status {}; // if it exists: of a regular file
    int error = 0;         // why nothing can be written there; 0 if something can
    std::string reason;    // the same in words

    // A real path.
    static FilePlace find(const std::string& path);
};

// What stands in the way where a regular file is looked for, in words; null for a regular file.
const char* obstacleName(mode_t mode);

// The same file with the same content, as far as the file system can tell.
bool isSameVersion(const struct stat& a, const struct stat& b);

} // namespace seat
