#include "services/jvninputd/udev_properties.h"

#include "services/jvninputd/VirtualDevice.h"

#include <charconv>
#include <linux/input.h>

namespace jvninputd {

namespace {

constexpr std::string_view ourSeat = "seat0";
constexpr std::size_t longestName = 255;

std::string cleanName(std::string_view given) {
    std::string name;
    for (const char character : given.substr(0, longestName))
        name += static_cast<unsigned char>(character) < ' ' || character == 0x7f ? ' ' : character;
    return name.empty() ? "Keyboard" : name;
}

unsigned hexadecimal(std::string_view digits) {
    unsigned value = 0;
    std::from_chars(digits.data(), digits.data() + digits.size(), value, 16);
    return value;
}

} // namespace

std::optional<AddressBytes> addressFrom(const char* given) {
    const std::string_view digits = text(given);
    AddressBytes address{};
    if (digits.size() != address.size() * 3 - 1) return std::nullopt;
    for (std::size_t i = 0; i < address.size(); ++i) {
        const char* pair = digits.data() + i * 3;
        const auto [end, error] = std::from_chars(pair, pair + 2, address[i], 16);
        if (error != std::errc() || end != pair + 2 || (i + 1 < address.size() && *end != ':')) return std::nullopt;
    }
    return address;
}

DeviceKind kindOf(const Lookup& property) {
    const std::string_view seat = text(property("ID_SEAT"));
    return {text(property("ID_INPUT_KEYBOARD")) == "1", text(property("ID_INPUT_JOYSTICK")) == "1",
            seat.empty() || seat == ourSeat};
}

DeviceIdentity identityOf(const Lookup& attribute) {
    DeviceIdentity identity;
    identity.name = cleanName(text(attribute("name")));
    identity.address = addressFrom(attribute("uniq"));
    const unsigned bus = hexadecimal(text(attribute("id/bustype")));
    if (bus == BUS_BLUETOOTH) identity.bus = input::Bus::bluetooth;
    if (bus == BUS_USB) identity.bus = input::Bus::usb;
    identity.ours = bus == BUS_VIRTUAL && (identity.name == standInName || identity.name == padName);
    return identity;
}

} // namespace jvninputd
