#pragma once

#include <string>

namespace seat {

// The address to try now, in the bus's own notation; empty when there is none: the one that settleSessionBus() found,
// else the environment's, else the place in the user's run folder where a bus of the session would appear. Main thread.
std::string busAddressToTry();

// Whether the address names a bus that is simply connected to. Those that start a program are not taken: what they
// start would outlive us.
bool isPlainBusAddress(const std::string& address);

// The file of the bus's socket; empty when the address has none (an abstract name, a network address).
std::string socketFileOfBusAddress(const std::string& address);

} // namespace seat
