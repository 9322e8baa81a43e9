#pragma once

// Where the session's bus is, found out before anything connects to it. A missing address makes bus libraries start a
// bus of their own that outlives us; a bus that accepts and never answers makes them wait for half a minute.

#include <chrono>
#include <string>

namespace seat {

enum class BusState { Answers, Silent, Absent };

// Connects, authenticates and says hello, all within `timeout`. Of several addresses the first that answers counts.
// A malformed list counts as absent, and so does one with anything but sockets of this computer's (isPlainBusAddress).
BusState probeBus(const std::string& addresses, std::chrono::milliseconds timeout);

// An address at which nobody ever listens.
inline constexpr const char* nobodysBusAddress = "unix:path=/nonexistent/session-bus";

// Before the toolkit starts, and before there are threads: finds the session's bus (the environment's, else the one in
// the run-time folder) and probes it. Where none answers, the environment gets an address that nothing listens at, so
// that every connection fails at once.
BusState settleSessionBus(std::chrono::milliseconds timeout);

// The bus as the session names it, whether or not it answered; empty when it has none. For later tries, and for
// children.
const std::string& sessionBusAddress();

} // namespace seat
