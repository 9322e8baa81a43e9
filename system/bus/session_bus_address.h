#pragma once

// Where the session's bus is, found out before anything connects to it. A missing address makes bus libraries start a
// bus of their own that outlives us.

#include "system/bus/BusRelay.h"

#include <memory>
#include <string>

namespace seat {

// An address at which nobody ever listens.
inline constexpr const char* nobodysBusAddress = "unix:path=/nonexistent/session-bus";

// Before the toolkit starts, and before there are threads: finds the session's bus (the environment's, else the one in
// the run-time folder), without asking it anything. From then on the environment names a relay to it, which the caller
// keeps for as long as the toolkit; without a bus an address that nothing listens at, so that every connection fails at
// once.
std::unique_ptr<BusRelay> settleSessionBus();

// The bus as the session names it; empty when it has none. For ourselves and for children.
const std::string& sessionBusAddress();

} // namespace seat
