#pragma once

#include <functional>
#include <string>

namespace seat {

// The real path of the folder in which settings pages find their resources: the loaded bundle's. Set by the application
// before it makes the page; empty until then. Main thread only.
void setResourceFolder(std::string realPath);
const std::string& resourceFolder();

// Called with a resource that cannot be shown as it is meant, and why: its real path and the reason, in a few words.
// An empty function removes it. Main thread only.
void setResourceFaultHandler(std::function<void(const std::string& path, const std::string& reason)> handler);
// Logs it, and calls the handler.
void reportResourceFault(const std::string& path, const std::string& reason);

} // namespace seat
