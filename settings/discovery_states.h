#pragma once

#include <cstdint>
#include <string>

// The number in each progress report of the discovery tool. 1 is reserved; others mean nothing.
enum JVNDiscoveryState : std::int64_t {
    JVNDiscoveryStateSearching = 0,
    JVNDiscoveryStatePaired = 2,
    JVNDiscoveryStateBluetoothInactive = 3,
    JVNDiscoveryStateStarting = 4,
};

// What the overlay says while the tool searches; nullptr for a type that is not paired this way.
const char* searchingText(long controllerType);
// The success message; it names the button to press in the game.
std::string pairedMessage(long controllerType);
