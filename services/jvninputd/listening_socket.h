#pragma once

#include "host/foundation/Descriptor.h"

#include <string>

namespace jvninputd {

// The socket that the service manager listens on for us; none when it does not.
host::Descriptor inheritedSocket();

// A new one at this path, for everybody to connect to; what is there already is replaced. None, logged, when that
// fails.
host::Descriptor listeningSocket(const std::string& path);

} // namespace jvninputd
