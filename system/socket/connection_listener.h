#pragma once

#include <functional>
#include <string>

namespace seat {

// What a connection shows of whoever is at its other end.
enum class ConnectionEvent {
    Connected,
    Answered, // what was asked for has come, whole
    Silent    // it had not when the time for it was up
};

// Hears of each connection that this process makes, by the path that it asked for. On the thread that connects or
// reads. One listener; empty takes it away, and it may still be running then. Any thread.
using ConnectionListener = std::function<void(const std::string& path, ConnectionEvent event)>;
void setConnectionListener(ConnectionListener listener);

// For the sockets, which tell by their descriptors. One that is not connected, or was by somebody else, tells nothing.
void tellOfConnection(int descriptor, const std::string& path);
void tellOfReply(int descriptor, ConnectionEvent event);
void forgetConnection(int descriptor);

} // namespace seat
