#pragma once

namespace seat {

// Opens those of the descriptors 0 to 2 that are missing, on /dev/null, so that nothing that is opened later is taken
// for the standard output. The first thing in main().
void openMissingStandardDescriptors();

} // namespace seat
