#pragma once

#include "system/files/Descriptor.h"

#include <sys/types.h>

namespace seat {

// Starts a process in the tool's group that only waits for the end of this process. However that came about, the tool
// has been interrupted by the system then; when it has ended, half a second later at most, whatever is left of its
// group is killed. The guard's process descriptor, for us to end and reap it; none when there is no room for it. The
// tool has a group of its own and has not been reaped.
Descriptor startToolGuard(::pid_t tool, const Descriptor& process);

// Ends the guard, if there is one, of a tool that has been reaped; it is still to be reaped itself.
void endToolGuard(const Descriptor& guard);

// Waits for the end of the guard, if there is one.
void reapToolGuard(const Descriptor& guard);

} // namespace seat
