#include "daemonlink/crc32.h"

#include <array>

namespace {

constexpr std::array<std::uint32_t, 256> table = [] {
    std::array<std::uint32_t, 256> entries{};
    for (std::uint32_t i = 0; i < entries.size(); ++i) {
        std::uint32_t entry = i;
        for (int bit = 0; bit < 8; ++bit) entry = (entry & 1) ? 0xEDB88320u ^ (entry >> 1) : entry >> 1;
        entries[i] = entry;
    }
    return entries;
}();
static_assert(table[1] == 0x77073096u);

} // namespace

std::uint32_t crc32(const void* bytes, std::size_t length) {
    const auto* byte = static_cast<const std::uint8_t*>(bytes);
    std::uint32_t crc = 0;
    for (std::size_t i = 0; i < length; ++i) crc = table[(crc ^ byte[i]) & 0xFF] ^ (crc >> 8);
    return crc;
}
