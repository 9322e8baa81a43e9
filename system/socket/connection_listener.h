#pragma once

#include <functional>
#include <string>

namespace seat {

// Hears of each connection that this process makes, by the path that it asked for: that somebody is there. On the
// thread that connects. One listener; empty takes it away, and it may still be running then. Any thread.
void setConnectionListener(std::function<void(const std::string& path)> listener);

// For the sockets.
void tellOfConnection(const std::string& path);

} // namespace seat
