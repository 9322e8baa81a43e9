#pragma once

#include "services/bluetooth/Address.h"

#include <optional>
#include <string>

namespace bluetooth {

// What the service says of one device, as it was at that moment.
struct Device {
    Address address;
    std::string name; // as the device calls itself, made by anybody: may be empty, long, or full of control characters
    bool isGamepad = false; // a gamepad or a joystick, by its class of device or its appearance
    bool isHeard = false;   // it answered the search that is going on
    // It is heard, and is of the kind that answers a search only while it wants to be paired. Devices of the low-energy
    // radio call out whenever they are on, so of them this is never said.
    bool isInPairingMode = false;
    bool isPaired = false;             // keys were exchanged and are kept
    bool isTrusted = false;            // it may connect by itself
    bool mayWake = false;              // it may wake this computer
    bool isConnected = false;          // the radio link is there; its input device comes a little later, or never
    std::optional<int> batteryPercent; // 0 to 100, when the service knows

    friend bool operator==(const Device&, const Device&) = default;
};

} // namespace bluetooth
