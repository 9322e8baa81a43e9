#pragma once

// The two kinds of client that a program can have.

#include "services/bluetooth/Client.h"

#include <optional>
#include <string>

namespace services {
class EventLoop;
}

namespace bluetooth {

// The system's Bluetooth service, on the system bus (DBUS_SYSTEM_BUS_ADDRESS where that is set). The loop must outlive
// the client. A bus that is absent or goes away is the same as an absent service, and is tried again.
std::unique_ptr<Client> makeSystemClient(services::EventLoop& loop);

// Simulated controllers, which all programs that are given the same file share: what one pairs or connects, the others
// hear of. `world` is a real path; a file, or a folder, that is absent is made. simulatedWorldHelp says what is in it.
// Whoever holds the controllers does what the page says: of those with a type only the ones of `wantedType`, where one
// is given, answer a search.
std::unique_ptr<Client> makeSimulatedClient(services::EventLoop& loop, const std::string& world,
                                            std::optional<int> wantedType = std::nullopt);

// For --help: where the file is under the root, what it holds, and what a person may change in it.
extern const char* const simulatedWorldHelp;
// The file's place below the root.
inline constexpr const char* simulatedWorldPath = "/var/joyvane/simulated-controllers";

} // namespace bluetooth
