#pragma once

#include <string>

namespace seat {

// The address to try now, in the bus's own notation; empty when there is none: the one that settleSessionBus() found,
// else the environment's, else the place in the user's run folder where a bus of the session would appear. Main thread.
std::string busAddressToTry();

// Whether each of the addresses is a socket of this computer's. Others are not taken: what starts a program leaves it
// behind, and of a network nobody can say who is at the other end.
bool isPlainBusAddress(const std::string& address);

// The file of the bus's socket; empty when the address has none (an abstract name).
std::string socketFileOfBusAddress(const std::string& address);

} // namespace seat
