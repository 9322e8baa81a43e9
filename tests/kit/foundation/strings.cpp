#include "platform/foundation/NSScanner.h"
#include "platform/foundation/NSString.h"

#include <gtest/gtest.h>
#include <limits>
#include <locale.h>

namespace {

struct Scanned {
    bool found;
    std::uint32_t value;
    friend bool operator==(const Scanned&, const Scanned&) = default;
};

Scanned scan(const std::string& text) {
    Scanned scanned{false, 0x5a5a5a5a};
    scanned.found = NSScanner::scannerWithString(text)->scanHexInt(&scanned.value);
    return scanned;
}

constexpr Scanned untouched{false, 0x5a5a5a5a};

TEST(HexScanner, ReadsDigitsOfEitherCaseUpToTheFirstOther) {
    EXPECT_EQ(scan("004EFD"), (Scanned{true, 0x004efd}));
    EXPECT_EQ(scan("004efd"), (Scanned{true, 0x004efd}));
    EXPECT_EQ(scan("00 4EFD"), (Scanned{true, 0}));
    EXPECT_EQ(scan("FFFg12"), (Scanned{true, 0xfff}));
    EXPECT_EQ(scan("12004EFD"), (Scanned{true, 0x12004efd}));
}

TEST(HexScanner, AcceptsAPrefix) {
    EXPECT_EQ(scan("0x004EFD"), (Scanned{true, 0x004efd}));
    EXPECT_EQ(scan("0XfF"), (Scanned{true, 0xff}));
    EXPECT_EQ(scan("0x"), (Scanned{true, 0}));
    EXPECT_EQ(scan("0xg"), (Scanned{true, 0}));
    EXPECT_EQ(scan("0x0x1"), (Scanned{true, 0}));
}

TEST(HexScanner, SkipsWhiteSpaceBefore) {
    EXPECT_EQ(scan(" \t\r\n004EFD"), (Scanned{true, 0x004efd}));
    EXPECT_EQ(scan("\n 0xff"), (Scanned{true, 0xff}));
}

TEST(HexScanner, LeavesTheValueAloneWhenThereIsNoNumber) {
    EXPECT_EQ(scan(""), untouched);
    EXPECT_EQ(scan("   "), untouched);
    EXPECT_EQ(scan("#004EFD"), untouched);
    EXPECT_EQ(scan("x1"), untouched);
    EXPECT_EQ(scan("-1"), untouched);
    EXPECT_EQ(scan("ä"), untouched);
}

TEST(HexScanner, TooLargeAValueReadsAsAllOnes) {
    EXPECT_EQ(scan("100000000"), (Scanned{true, 0xffffffff}));
    EXPECT_EQ(scan(std::string(4000, 'f')), (Scanned{true, 0xffffffff}));
    EXPECT_EQ(scan("ffffffff"), (Scanned{true, 0xffffffff}));
    EXPECT_EQ(scan("00000000000000000000004EFD"), (Scanned{true, 0x004efd}));
}

TEST(HexScanner, GoesOnWhereItStopped) {
    const auto scanner = NSScanner::scannerWithString("ff 10 zz");
    std::uint32_t value = 0;

    EXPECT_TRUE(scanner->scanHexInt(&value));
    EXPECT_TRUE(scanner->scanHexInt(&value));
    EXPECT_EQ(value, 0x10u);
    EXPECT_FALSE(scanner->scanHexInt(&value));
    EXPECT_FALSE(scanner->scanHexInt(nullptr));
}

TEST(Strings, IntegerValueIsTheLeadingDecimalNumber) {
    EXPECT_EQ(NSStringIntegerValue("26"), 26);
    EXPECT_EQ(NSStringIntegerValue(" \t-7 dwarfs"), -7);
    EXPECT_EQ(NSStringIntegerValue("+3"), 3);
    EXPECT_EQ(NSStringIntegerValue("3.9"), 3);
    EXPECT_EQ(NSStringIntegerValue("0x10"), 0);
}

TEST(Strings, IntegerValueOfNoNumberIsZero) {
    for (const char* const text : {"", " ", "abc", "-", "+", "+-3", "-+3", "--3", "é"})
        EXPECT_EQ(NSStringIntegerValue(text), 0) << text;
}

TEST(Strings, IntegerValueSaturates) {
    EXPECT_EQ(NSStringIntegerValue("9223372036854775807"), std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(NSStringIntegerValue("9223372036854775808"), std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(NSStringIntegerValue("-99999999999999999999"), std::numeric_limits<std::int64_t>::min());
}

TEST(Strings, NumbersArePlainDecimalsWhateverTheLocale) {
    // What is installed differs; German writes a decimal comma where it is there.
    const char* const before = ::setlocale(LC_ALL, nullptr);
    const std::string kept = before ? before : "C";
    for (const char* const name : {"de_DE.UTF-8", "C.UTF-8"}) {
        ::setlocale(LC_ALL, name);
        EXPECT_EQ(NSStringFromInteger(-1234567), "-1234567");
        EXPECT_EQ(NSStringFromInteger(std::numeric_limits<std::int64_t>::min()), "-9223372036854775808");
        EXPECT_EQ(NSStringWithFormat("%.2f", 0.5), "0.50");
    }
    ::setlocale(LC_ALL, kept.c_str());
}

TEST(Strings, FormatGivesTheWholeTextHoweverLong) {
    EXPECT_EQ(NSStringWithFormat("%02x%02x%02x", 0, 0x4e, 0xfd), "004efd");
    EXPECT_EQ(NSStringWithFormat("Key (%ld)", 39L), "Key (39)");
    const std::string longText(3000, 'x');
    EXPECT_EQ(NSStringWithFormat("<%s>", longText.c_str()), "<" + longText + ">");
}

} // namespace
