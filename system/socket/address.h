#pragma once

#include <cstddef>
#include <string>

namespace seat {

// UNIX-domain addresses by real path, of any length that the system's other file calls take: a path that is too long
// for the system's address record is reached through a descriptor of its own. 0, or the system's error number.
int connectToPath(int descriptor, const std::string& realPath);
int bindToPath(int descriptor, const std::string& realPath);

// Whether the other side of a connected descriptor runs as this process's user or as root.
bool peerIsTrusted(int descriptor);

} // namespace seat
