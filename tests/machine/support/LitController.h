#pragma once

#include <array>
#include <compare>
#include <string>

#include "tests/machine/support/UhidDevice.h"

namespace machine {

struct Light {
    uint8_t red = 0;
    uint8_t green = 0;
    uint8_t blue = 0;
    auto operator<=>(const Light&) const = default;
};

enum class Wire { Usb, Bluetooth };

// A controller with a light, as its driver in the kernel knows it. Its address is "AA:BB:CC:DD:EE:FF"; the driver binds
// no two with the same one.
class LitController {
public:
    const std::string& address() const { return m_address; }
    // The kernel's name for its input device, which is that of its event node too.
    const std::string& name() const { return m_name; }

    // What its light shows by the last report that says so; nothing before the first.
    std::optional<Light> light() const;
    // How many reports have said what the light shows.
    size_t lightReports() const;
    // Waits until a report after the first `seen` ones sets the light so; false when none came in time.
    bool waitForLight(const Light& light, size_t seen = 0, std::chrono::milliseconds timeout = kLongTimeout) const;

    void disconnect() { m_device.disconnect(); }
    UhidDevice& device() { return m_device; }

protected:
    // A report that sets the light has `number` first and, where the mask says, those bits of its flags.
    struct LightPlace {
        uint8_t number;
        size_t flags;
        uint8_t mask;
        size_t red;
    };
    LitController(std::string name, std::string address, const LightPlace& place, UhidDescription description);
    ~LitController() = default;

private:
    std::optional<Light> lightOf(const Report& report) const;

    std::string m_name;
    std::string m_address;
    LightPlace m_place;
    UhidDevice m_device;
};

// The driver makes three LEDs of its light, "*:red", "*:green", "*:blue", and one for all, "*:global".
class DualShock4 : public LitController {
public:
    explicit DualShock4(Wire wire = Wire::Usb, const std::string& address = "A0:AB:51:00:00:01");
};

// The later one. The driver makes one multicolour LED of its light, "*:rgb:indicator".
class DualSense : public LitController {
public:
    explicit DualSense(Wire wire = Wire::Usb, const std::string& address = "A0:AB:51:00:00:02");
};

} // namespace machine
