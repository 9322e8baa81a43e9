#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace seat {

// SHA-256 (FIPS 180-4) over bytes that come in pieces.
class SHA256 {
public:
    void add(std::span<const std::uint8_t> bytes);
    // The digest as 64 lower-case hexadecimal digits. Nothing can be added after it.
    std::string hexDigest();

private:
    void addBlock(const std::uint8_t* block);

    std::array<std::uint32_t, 8> m_state{0x6a09e667, 0xbb67ae85, 0x3c6ef372, 0xa54ff53a,
                                         0x510e527f, 0x9b05688c, 0x1f83d9ab, 0x5be0cd19};
    std::array<std::uint8_t, 64> m_pending{};
    std::uint64_t m_length = 0; // bytes added so far
};

} // namespace seat
