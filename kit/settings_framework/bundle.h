#pragma once

#include <string>

namespace seat {

// The real path of the folder in which settings pages find their resources: the loaded bundle's. Set by the application
// before it makes the page; empty until then. Main thread only.
void setResourceFolder(std::string realPath);
const std::string& resourceFolder();

} // namespace seat
