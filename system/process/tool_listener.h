#pragma once

#include <functional>
#include <string>

namespace seat {

// Hears, of each of the add-on's tools by the path that was asked for, that it could not be started or has ended by
// itself and not well, and why; with an empty reason, that it has been started. One listener; empty takes it away. Main
// thread.
void setToolListener(std::function<void(const std::string& path, const std::string& reason)> listener);

// For the tasks.
void tellOfTool(const std::string& path, const std::string& reason);

} // namespace seat
