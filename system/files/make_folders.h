#pragma once

#include <string>

namespace seat {

// Makes each folder of a real path that is missing, for its owner alone (0700) whatever the umask. One that the
// administrator makes belongs to the owner of the folder around it. 0, or the error's number.
int makeFolders(const std::string& path);

} // namespace seat
