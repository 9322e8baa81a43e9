#pragma once

#include <functional>
#include <string>

namespace seat {

// Who opens addresses for UIApplication::openURL; without one, none is opened. The function does not wait, says
// whether a browser could be started, and logs why not. Main thread.
void setURLOpener(std::function<bool(const std::string& url)> opener);

} // namespace seat
