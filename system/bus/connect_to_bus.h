#pragma once

#include "system/files/Descriptor.h"

#include <string>

namespace seat {

// Connects to the first bus of a list, in the bus's own notation, that takes the connection, without waiting for any.
// None, and `problem`, when there is no such bus: nobody listens or takes connections, it belongs to another user, or
// it is no UNIX socket. The descriptor does not block. Any thread.
Descriptor connectToBus(const std::string& addresses, std::string& problem);

} // namespace seat
