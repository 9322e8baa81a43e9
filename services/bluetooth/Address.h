#pragma once

#include <array>
#include <compare>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace bluetooth {

// A Bluetooth device's address, in the order in which it is printed: "00:AA:01:01:00:01" is 00 AA 01 01 00 01. The
// preferences and the control socket carry the bytes in this order too.
struct Address {
    std::array<std::uint8_t, 6> bytes{};

    // Six pairs of hexadecimal digits, either case, with colons; nothing else.
    static std::optional<Address> fromText(std::string_view text);
    // Exactly 6 bytes.
    static std::optional<Address> fromBytes(std::span<const std::uint8_t> bytes);

    // Whole, in capitals: for files and for the Bluetooth service.
    std::string text() const;
    // The last two bytes alone, "..:00:01": a log never has a whole address.
    std::string forLog() const;

    friend auto operator<=>(const Address&, const Address&) = default;
};

} // namespace bluetooth
