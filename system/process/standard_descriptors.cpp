#include "system/process/standard_descriptors.h"

#include <fcntl.h>
#include <unistd.h>

void seat::openMissingStandardDescriptors() {
    // The lowest free number is the one that is missing.
    for (int descriptor = ::open("/dev/null", O_RDWR); descriptor >= 0; descriptor = ::open("/dev/null", O_RDWR))
        if (descriptor > STDERR_FILENO) {
            ::close(descriptor);
            return;
        }
}
