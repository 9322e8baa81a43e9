#pragma once

#include <string>

namespace seat {

// Tools of the add-on that were installed with the application: they are found where the root has none of its own.
// Both are called with the tool's logical path. Main thread.
void setInstalledTool(const std::string& logicalPath, std::string realPath);

// The real path of what is to be launched: the root's own, else the installed one, else where the root's would be.
std::string toolPath(const std::string& logicalPath);

} // namespace seat
