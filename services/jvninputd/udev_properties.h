#pragma once

#include "services/jvninputd/Hotplug.h"

#include <functional>
#include <string>
#include <string_view>

namespace jvninputd {

// What udev and the kernel say of a device, read with care: a device gives itself its name and its address.
// nullptr for what is not said; what is said stays as long as the device.
using Lookup = std::function<const char*(const char* key)>;

struct DeviceKind {
    bool keyboard = false;
    bool joystick = false;
    bool atOurSeat = false;
};
DeviceKind kindOf(const Lookup& property);

struct DeviceIdentity {
    std::string name; // without control characters; never empty
    input::Bus bus = input::Bus::other;
    std::optional<AddressBytes> address;
    bool ours = false; // made by this program, or another of its kind
};
// From the attributes of the "input" device.
DeviceIdentity identityOf(const Lookup& attribute);

inline std::string_view text(const char* string) { return string ? string : ""; }

} // namespace jvninputd
