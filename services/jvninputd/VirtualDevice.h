#pragma once

#include "services/jvninputd/pad_events.h"

#include <memory>
#include <span>
#include <string>
#include <vector>

struct libevdev;
struct libevdev_uinput;

namespace jvninputd {

struct EvdevDeleter {
    void operator()(::libevdev* device) const;
    void operator()(::libevdev_uinput* device) const;
};
using Evdev = std::unique_ptr<::libevdev, EvdevDeleter>;

// The names under which games and desktops know our devices. Their bus is "virtual".
inline constexpr const char* padName = "Joyvane Gamepad";
inline constexpr const char* standInName = "Joyvane Keyboard";

// An input device that the kernel shows to everybody for as long as this object lives. The kernel lets go what it holds
// down when it goes, also with the process.
class VirtualDevice {
public:
    // With the name and capabilities of the description, which is no longer needed then; nothing when the kernel
    // refuses, which is logged.
    static std::unique_ptr<VirtualDevice> create(::libevdev& description);

    // One frame; its end is added.
    void write(std::span<const Event> events);

    // Events that others send to the device (lamps) can be read here, as the kernel writes them, without blocking.
    int descriptor() const;
    // The path of its event node.
    std::string node() const;
    // The kernel's name of the node beside the pad's others: event5, js0. Those that there are at this moment.
    std::vector<std::string> nodeNames() const;

private:
    explicit VirtualDevice(::libevdev_uinput* device) : m_device(device) {}

    std::unique_ptr<::libevdev_uinput, EvdevDeleter> m_device;
};

// A description of the pad in this profile (not none).
Evdev describePad(input::Profile profile);
// A description of the keyboard that stands in for the given one: with its keys, wheels, knobs, switches and lamps.
Evdev describeStandIn(const ::libevdev& keyboard);

} // namespace jvninputd
