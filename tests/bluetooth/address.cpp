#include "services/bluetooth/Address.h"

#include <gtest/gtest.h>

using bluetooth::Address;

namespace {

TEST(Address, StandsInTheOrderInWhichItIsPrinted) {
    const auto address = Address::fromText("00:AA:01:02:03:0f");

    ASSERT_TRUE(address);
    EXPECT_EQ(address->bytes, (std::array<std::uint8_t, 6>{0x00, 0xAA, 0x01, 0x02, 0x03, 0x0F}));
    EXPECT_EQ(address->text(), "00:AA:01:02:03:0F");
}

TEST(Address, IsNothingElseThanSixPairsWithColons) {
    for (const char* text : {"", "00:AA:01:02:03", "00:AA:01:02:03:0F:", "00-AA-01-02-03-0F", "00:AA:01:02:03:0G",
                             "00:AA:01:02:03:0F ", " 0:AA:01:02:03:0F", "000AA:01:02:03:0F"})
        EXPECT_FALSE(Address::fromText(text)) << text;
}

TEST(Address, HasSixBytes) {
    const std::array<std::uint8_t, 7> bytes{1, 2, 3, 4, 5, 6, 7};

    EXPECT_FALSE(Address::fromBytes({bytes.data(), 5}));
    EXPECT_FALSE(Address::fromBytes(bytes));
    EXPECT_EQ(Address::fromBytes({bytes.data(), 6}), Address::fromText("01:02:03:04:05:06"));
}

TEST(Address, IsNotWholeInALog) {
    const Address address{{0x00, 0xAA, 0x01, 0x02, 0x03, 0x0F}};

    EXPECT_EQ(address.forLog(), "..:03:0F");
}

} // namespace
