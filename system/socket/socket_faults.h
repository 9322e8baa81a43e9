#pragma once

#include <cstddef>

// Lets tests make a call of platform/socket.h fail as a system in trouble would.
namespace seat {

enum class SocketCall : std::size_t { Socket, Connect, Send, Receive, SetOption };
inline constexpr std::size_t socketCallCount = 5;

// The next `times` calls on any thread give -1 with this error number, without doing anything else.
void failSocketCalls(SocketCall call, int times, int errorNumber);
void clearSocketFaults();

// Used by the calls themselves: the error number with which this one is to fail, or 0.
int takeSocketFault(SocketCall call);

} // namespace seat
