#pragma once

#include "system/files/Descriptor.h"

#include <string>

namespace jvninputd {

// The socket that the service manager listens on for us; none when it does not.
seat::Descriptor inheritedSocket();

// A new one at this path, for everybody to connect to; what is there already is replaced. None, logged, when that
// fails.
seat::Descriptor listeningSocket(const std::string& path);

} // namespace jvninputd
