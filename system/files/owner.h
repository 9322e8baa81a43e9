#pragma once

#include "system/files/uninterrupted.h"

#include <cerrno>
#include <sys/stat.h>
#include <unistd.h>

namespace seat {

// Gives what was just made in a folder exactly this mode, whatever the umask. What the administrator makes in
// somebody's folder becomes that somebody's, who could not open it otherwise. 0, or the error's number.
inline int settleMade(int made, mode_t mode, int folder) {
    struct stat owner {};
    if (::geteuid() == 0 && ::fstat(folder, &owner) == 0 && owner.st_uid != 0 &&
        uninterrupted([&] { return ::fchown(made, owner.st_uid, owner.st_gid); }) != 0)
        return errno;
    return uninterrupted([&] { return ::fchmod(made, mode); }) == 0 ? 0 : errno;
}

} // namespace seat
