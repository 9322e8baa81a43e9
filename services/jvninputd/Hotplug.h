#pragma once

#include "services/common/EventLoop.h"
#include "services/input_protocol/messages.h"

#include <array>
#include <functional>
#include <memory>
#include <optional>
#include <string>

struct udev;
struct udev_device;
struct udev_monitor;

namespace jvninputd {

struct UdevDeleter {
    void operator()(::udev* context) const;
    void operator()(::udev_device* device) const;
    void operator()(::udev_monitor* monitor) const;
};
using UdevDevice = std::unique_ptr<::udev_device, UdevDeleter>;

// A Bluetooth address as it is printed.
using AddressBytes = std::array<std::uint8_t, 6>;
// Of "00:aa:01:01:00:01", and of nothing else but its upper case.
std::optional<AddressBytes> addressFrom(const char* text);

struct KeyboardFound {
    std::string name;
    std::string node;
};

// A controller that has an address or a light.
struct ControllerFound {
    std::optional<AddressBytes> address;
    input::Bus bus = input::Bus::other;
    std::string lightFolder; // in the kernel's device tree, where its lights are; empty when it has none
};

// Which keyboards and controllers are plugged in at the seat, as udev sees them. Our own devices are not among them.
class Hotplug {
public:
    struct Callbacks {
        std::function<void(const std::string& device, const KeyboardFound&)> keyboardAdded;
        std::function<void(const std::string& device, const ControllerFound&)> controllerAdded; // also: its light came
        std::function<void(const std::string& device)> removed; // of whatever kind, also of none of these
    };
    // Devices are told apart by the kernel's names of their nodes (event5).
    Hotplug(services::EventLoop& loop, Callbacks callbacks);

    // Tells of all that are there. To be called once.
    void enumerate();

private:
    void handle(::udev_device& device);
    void added(::udev_device& device);
    void lightAdded(::udev_device& light);

    Callbacks m_callbacks;
    std::unique_ptr<::udev, UdevDeleter> m_udev;
    std::unique_ptr<::udev_monitor, UdevDeleter> m_monitor;
    services::EventLoop::Source m_readable;
};

} // namespace jvninputd
