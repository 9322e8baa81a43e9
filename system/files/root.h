#pragma once

#include <string>

namespace seat {

// The folder that stands for the phone's file system. Set once, before any file is touched; empty (the default): the
// machine's own root.
//
// Who maps: the functions of platform/ take logical paths and map them here, nobody else does. The functions of system/
// and desktop/ take real paths.
void setRoot(std::string realPath);
std::string root();

// The real path of a logical one. Absolute paths stand under the root and cannot climb out of it; a relative path stays
// what it is.
std::string hostPath(const std::string& logicalPath);

} // namespace seat
