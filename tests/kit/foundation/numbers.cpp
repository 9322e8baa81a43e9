#include "platform/foundation/NSNumber.h"

#include <gtest/gtest.h>
#include <limits>

namespace {

constexpr auto i64Max = std::numeric_limits<std::int64_t>::max();
constexpr auto i64Min = std::numeric_limits<std::int64_t>::min();
constexpr auto u64Max = std::numeric_limits<std::uint64_t>::max();
constexpr double infinite = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

TEST(Numbers, KeepTheTypeTheyWereMadeWith) {
    EXPECT_EQ(NSNumber::numberWithBool(true).type(), NSNumber::Type::Bool);
    EXPECT_EQ(NSNumber::numberWithInt(1).type(), NSNumber::Type::Int);
    EXPECT_EQ(NSNumber::numberWithInteger(1).type(), NSNumber::Type::Integer);
    EXPECT_EQ(NSNumber::numberWithUnsignedInt(1).type(), NSNumber::Type::UnsignedInt);
    EXPECT_EQ(NSNumber::numberWithUnsignedLongLong(1).type(), NSNumber::Type::UnsignedLongLong);
    EXPECT_TRUE(NSNumber::numberWithFloat(1).isFloatingPoint());
    EXPECT_TRUE(NSNumber::numberWithDouble(1).isFloatingPoint());
    EXPECT_FALSE(NSNumber::numberWithInt(1).isFloatingPoint());
}

TEST(Numbers, FloatNumberReadsAsTheFloatNearestToIt) {
    EXPECT_EQ(NSNumber::numberWithFloat(0.9f).doubleValue(), static_cast<double>(0.9f));
    EXPECT_NEAR(NSNumber::numberWithFloat(0.9f).doubleValue(), 0.899999976, 1e-9);
    EXPECT_EQ(NSNumber::numberWithDouble(0.1).doubleValue(), 0.1);
    EXPECT_EQ(NSNumber::numberWithDouble(0.1).floatValue(), 0.1f);
}

TEST(Numbers, RealsTruncateTowardsZero) {
    EXPECT_EQ(NSNumber::numberWithDouble(2.9).integerValue(), 2);
    EXPECT_EQ(NSNumber::numberWithDouble(-2.9).intValue(), -2);
    EXPECT_EQ(NSNumber::numberWithDouble(-0.9).unsignedIntValue(), 0u);
    EXPECT_EQ(NSNumber::numberWithFloat(254.99f).unsignedLongLongValue(), 254u);
}

TEST(Numbers, ConversionsSaturate) {
    EXPECT_EQ(NSNumber::numberWithDouble(1e300).integerValue(), i64Max);
    EXPECT_EQ(NSNumber::numberWithDouble(-infinite).integerValue(), i64Min);
    EXPECT_EQ(NSNumber::numberWithDouble(0x1p63).integerValue(), i64Max);
    EXPECT_EQ(NSNumber::numberWithDouble(-0x1p63).integerValue(), i64Min);
    EXPECT_EQ(NSNumber::numberWithDouble(0x1p31).intValue(), std::numeric_limits<std::int32_t>::max());
    EXPECT_EQ(NSNumber::numberWithDouble(2147483646.5).intValue(), 2147483646);
    EXPECT_EQ(NSNumber::numberWithDouble(infinite).unsignedLongLongValue(), u64Max);
    EXPECT_EQ(NSNumber::numberWithInteger(-1).unsignedIntValue(), 0u);
    EXPECT_EQ(NSNumber::numberWithInteger(i64Max).intValue(), std::numeric_limits<std::int32_t>::max());
    EXPECT_EQ(NSNumber::numberWithUnsignedLongLong(u64Max).integerValue(), i64Max);
    EXPECT_EQ(NSNumber::numberWithUnsignedLongLong(u64Max).unsignedLongLongValue(), u64Max);
}

TEST(Numbers, NotANumberReadsAsZero) {
    EXPECT_EQ(NSNumber::numberWithDouble(notANumber).integerValue(), 0);
    EXPECT_EQ(NSNumber::numberWithDouble(notANumber).unsignedIntValue(), 0u);
    EXPECT_FALSE(NSNumber::numberWithDouble(notANumber).boolValue());
}

TEST(Numbers, EverythingButZeroIsTrue) {
    EXPECT_TRUE(NSNumber::numberWithDouble(0.1).boolValue());
    EXPECT_TRUE(NSNumber::numberWithInt(-1).boolValue());
    EXPECT_TRUE(NSNumber::numberWithUnsignedLongLong(u64Max).boolValue());
    EXPECT_FALSE(NSNumber::numberWithDouble(-0.0).boolValue());
    EXPECT_FALSE(NSNumber::numberWithBool(false).boolValue());
}

TEST(Numbers, AreEqualByValueWhateverTheirTypes) {
    const auto three = NSNumber::numberWithInteger(3);

    EXPECT_EQ(three, NSNumber::numberWithInt(3));
    EXPECT_EQ(three, NSNumber::numberWithUnsignedInt(3));
    EXPECT_EQ(three, NSNumber::numberWithDouble(3.0));
    EXPECT_EQ(NSNumber::numberWithDouble(3.0), three);
    EXPECT_EQ(NSNumber::numberWithBool(true), NSNumber::numberWithInt(1));
    EXPECT_NE(three, NSNumber::numberWithDouble(3.5));
    EXPECT_NE(NSNumber::numberWithInteger(-1), NSNumber::numberWithUnsignedLongLong(u64Max));
    EXPECT_EQ(NSNumber::numberWithDouble(notANumber), NSNumber::numberWithDouble(notANumber));
    EXPECT_NE(three, NSNumber::numberWithDouble(notANumber));
}

TEST(Numbers, EqualityIsExactAtSixtyFourBits) {
    EXPECT_NE(NSNumber::numberWithInteger(i64Max), NSNumber::numberWithDouble(0x1p63));
    EXPECT_EQ(NSNumber::numberWithInteger(i64Min), NSNumber::numberWithDouble(-0x1p63));
    EXPECT_NE(NSNumber::numberWithUnsignedLongLong(u64Max), NSNumber::numberWithDouble(0x1p64));
    EXPECT_NE(NSNumber::numberWithInteger((1L << 53) + 1), NSNumber::numberWithDouble(0x1p53));
    EXPECT_EQ(NSNumber::numberWithUnsignedLongLong(1ull << 63), NSNumber::numberWithDouble(0x1p63));
}

TEST(Numbers, AbsentNumberReadsAsZero) {
    const std::optional<NSNumber> absent;

    EXPECT_EQ(floatValue(absent), 0);
    EXPECT_EQ(doubleValue(absent), 0);
    EXPECT_EQ(integerValue(absent), 0);
    EXPECT_EQ(intValue(absent), 0);
    EXPECT_EQ(unsignedIntValue(absent), 0u);
    EXPECT_FALSE(boolValue(absent));
    EXPECT_EQ(doubleValue(std::optional(NSNumber::numberWithInt(7))), 7);
}

} // namespace
