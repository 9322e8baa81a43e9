#pragma once

#include <fcntl.h>
#include <unistd.h>

namespace seat {

// Opens those of the descriptors 0 to 2 that are missing, on /dev/null, so that nothing that is opened later is taken
// for the standard output. The first thing in main().
inline void openMissingStandardDescriptors() {
    // The lowest free number is the one that is missing. Children are to have them, too.
    int descriptor = 0;
    while (descriptor >= 0 && descriptor <= STDERR_FILENO) descriptor = ::open("/dev/null", O_RDWR);
    if (descriptor > STDERR_FILENO) ::close(descriptor);
}

} // namespace seat
