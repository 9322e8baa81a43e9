#include "services/bluetooth/Address.h"

#include <algorithm>
#include <cstdio>

namespace bluetooth {
namespace {

int digit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

constexpr std::size_t textLength = 17;

} // namespace

std::optional<Address> Address::fromText(std::string_view text) {
    if (text.size() != textLength) return std::nullopt;
    Address address;
    for (std::size_t i = 0; i < address.bytes.size(); ++i) {
        const int high = digit(text[3 * i]);
        const int low = digit(text[3 * i + 1]);
        if (high < 0 || low < 0 || (i + 1 < address.bytes.size() && text[3 * i + 2] != ':')) return std::nullopt;
        address.bytes[i] = static_cast<std::uint8_t>(high << 4 | low);
    }
    return address;
}

std::optional<Address> Address::fromBytes(std::span<const std::uint8_t> bytes) {
    Address address;
    if (bytes.size() != address.bytes.size()) return std::nullopt;
    std::copy(bytes.begin(), bytes.end(), address.bytes.begin());
    return address;
}

std::string Address::text() const {
    char buffer[textLength + 1];
    std::snprintf(buffer, sizeof buffer, "%02X:%02X:%02X:%02X:%02X:%02X", bytes[0], bytes[1], bytes[2], bytes[3],
                  bytes[4], bytes[5]);
    return buffer;
}

std::string Address::forLog() const { return ".." + text().substr(textLength - 6); }

} // namespace bluetooth
