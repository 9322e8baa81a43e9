#pragma once

#include "system/files/Descriptor.h"

#include <string>

namespace seat {

// A new file beside the one at a real path, to be written and renamed over it: "<path>.saving-<six letters>", its
// owner's alone (0600). It is locked while it is open, so that one that is not is known for a dead writer's.
struct TemporaryFile {
    Descriptor descriptor;
    std::string path;
    int error = 0; // why there is none

    static TemporaryFile createBeside(const std::string& path);
};

// Removes what writers that were killed have left beside the file; those of living writers, and files that only have a
// name like it, stay.
void removeDeadTemporariesBeside(const std::string& path);

} // namespace seat
