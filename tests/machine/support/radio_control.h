#pragma once

#include <cstdint>
#include <string>

namespace machine {

// What the kernel is asked of a radio without the Bluetooth service, as a controller's own firmware would do it. Each
// says whether the kernel has done it. `radio` is 1 for hci1.

bool setClass(std::uint16_t radio, std::uint8_t major, std::uint8_t minor);
// Whether others find it.
bool setDiscoverable(std::uint16_t radio, bool isOn);
// Off: it pairs in the old way, with a PIN.
bool setSimplePairing(std::uint16_t radio, bool isOn);
// Its connection with the radio that has this address, "00:AA:01:00:00:00", ends at once.
bool hangUp(std::uint16_t radio, const std::string& address);

} // namespace machine
