#include "daemonlink/crc32.h"

#include <gtest/gtest.h>

#include <string_view>

namespace {

std::uint32_t crcOf(std::string_view text) { return crc32(text.data(), text.size()); }

TEST(Crc32, OfNothingIsZero) {
    EXPECT_EQ(crc32(nullptr, 0), 0u);
    EXPECT_EQ(crcOf(""), 0u);
}

TEST(Crc32, HasNoInversionBeforeOrAfter) { EXPECT_EQ(crcOf("123456789"), 0x2DFD2D88u); }

TEST(Crc32, OfASingleOneIsTheFirstTableEntry) { EXPECT_EQ(crcOf("\x01"), 0x77073096u); }

TEST(Crc32, OfZerosStaysZero) { EXPECT_EQ(crcOf(std::string_view("\0\0\0\0", 4)), 0u); }

// A byte beyond 127 must index the table as an unsigned number.
TEST(Crc32, ReadsBytesAsUnsigned) {
    std::uint32_t entry = 0xFF;
    for (int bit = 0; bit < 8; ++bit) entry = (entry & 1) ? 0xEDB88320u ^ (entry >> 1) : entry >> 1;
    EXPECT_EQ(crcOf("\xFF"), entry);
}

TEST(Crc32, OfAPrefixIsWhereTheRestGoesOn) {
    // The register after "1234" and the rest's own bits meet in the final value: bit by bit, without the table.
    const std::string_view text = "The quick brown fox jumps over the lazy dog";
    std::uint32_t crc = 0;
    for (const char c : text) {
        crc ^= static_cast<std::uint8_t>(c);
        for (int bit = 0; bit < 8; ++bit) crc = (crc & 1) ? 0xEDB88320u ^ (crc >> 1) : crc >> 1;
    }
    EXPECT_EQ(crcOf(text), crc);
}

} // namespace
