#pragma once

#include "daemonlink/JVNControlFrame.h"

#include <cstdint>

// The exchanges of the control socket, on a connection that the caller opened and closes. A send that fails changes
// nothing of what follows: a daemon that has gone shows in the reply that does not come. The first failure of an
// exchange is logged. Those that read a reply wait for it and belong on a worker.
namespace daemonlink {

inline constexpr long connectReplySeconds = 20;
inline constexpr long queryReplySeconds = 1;

// How long a later read waits at the most. False when the connection cannot have it; the exchange then ends.
bool setReplyTimeout(int descriptor, long seconds);

enum class QueryReply { NotConnected, Unknown, Connected };
// Sends QueryConnection and reads the reply into the same frame.
QueryReply queryConnection(int descriptor, JVNControlFrame& frame);

// Sends Connect with the frame's type and payload and reads the reply. Anything but twelve whole bytes that accept is
// answered with EndSession, whose bytes 4 to 11 are what came.
bool connect(int descriptor, JVNControlFrame& frame, std::uint32_t controllerType);

// Sends Disconnect, then the same bytes as EndSession. No reply.
void disconnect(int descriptor, JVNControlFrame& frame, std::uint32_t controllerType);

// No reply.
void setLEDColor(int descriptor, std::uint8_t red, std::uint8_t green, std::uint8_t blue);
void restartDaemons(int descriptor);

} // namespace daemonlink
