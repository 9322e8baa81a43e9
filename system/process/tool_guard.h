#pragma once

#include "system/files/Descriptor.h"

#include <sys/types.h>

namespace seat {

// Starts a process in the tool's group that only waits for the end of the tool or of this process. When this process is
// the first, however it ended, the tool has been interrupted by the system; half a second later whatever is left of its
// group is killed. The guard's process descriptor, for us to reap it; none when there is no room for it. The tool has
// a group of its own and has not been reaped.
Descriptor startToolGuard(::pid_t tool, const Descriptor& process);

// Waits for the end of the guard, if there is one, of a tool that has ended.
void reapToolGuard(const Descriptor& guard);

} // namespace seat
