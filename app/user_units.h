#pragma once

#include <functional>
#include <string>

namespace app {

// Whether the session's service manager has a unit of that name.
bool isUserUnit(const std::string& unit);

// Has it started. Does not wait: `started` hears on the main queue, once, why it could not be; nothing when it was.
void startUserUnit(const std::string& unit, std::function<void(const std::string& reason)> started);
// The same, for one that may run: it is ended first.
void restartUserUnit(const std::string& unit, std::function<void(const std::string& reason)> started);

} // namespace app
