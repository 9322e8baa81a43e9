#include "platform/log.h"

#include "kit/runtime/LineLimit.h"
#include "kit/runtime/LogLine.h"
#include "kit/runtime/RepeatedLines.h"
#include "kit/runtime/log.h"
#include "tests/support/CapturedLog.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::ElementsAre;

TEST(Log, WritesOneLineAtATime) {
    seat::setLogSink({}); // nothing is counted yet
    testing::internal::CaptureStderr();

    NSLog("reading %s: %d", "a file", 5);
    NSLog("again");

    EXPECT_EQ(testing::internal::GetCapturedStderr(), "joyvane: reading a file: 5\njoyvane: again\n");
}

TEST(Log, ALineIsWrittenOnceAndThenCounted) {
    seat::setLogSink({});
    testing::internal::CaptureStderr();

    for (int i = 0; i < 1000; ++i) NSLog("connect %s: refused", "a socket");

    EXPECT_EQ(testing::internal::GetCapturedStderr(), "joyvane: connect a socket: refused\n");
}

TEST(Log, ControlCharactersCannotForgeALine) {
    const testing_support::CapturedLog log;

    NSLog("name %s", "a\nb\r\x1b[31m\x7f"
                     "ü");

    EXPECT_THAT(log.lines(), ElementsAre("name a b  [31m ü"));
}

TEST(Log, EndlessTextIsCut) {
    const testing_support::CapturedLog log;

    NSLog("%s", std::string(100'000, 'x').c_str());

    ASSERT_EQ(log.lines().size(), 1u);
    EXPECT_LT(log.lines()[0].size(), 2000u);
}

TEST(Log, NoWholeBluetoothAddressIsWritten) {
    const testing_support::CapturedLog log;

    NSLog("pairing with 00:AA:01:01:00:01: refused, dev_00_aa_01_02_00_02 and 00-AA-01-03-00-03");
    NSLog("00:AA:01:01:00:01");
    NSLog("at 10:20:30, bytes 00 AA 01 01 00 01, 00:AA:01:01:00:0g, 00:AA:01-01:00:01");

    EXPECT_THAT(log.lines(), ElementsAre("pairing with ..:00:01: refused, dev_.._00_02 and ..-00-03", "..:00:01",
                                         "at 10:20:30, bytes 00 AA 01 01 00 01, 00:AA:01:01:00:0g, 00:AA:01-01:00:01"));
}

TEST(Log, AnAddressThatIsCutByTheEndOfTheLineIsNotMade) {
    const testing_support::CapturedLog log;

    for (std::size_t before = 900; before < 1030; ++before)
        NSLog("%s00:AA:01:01:00:01", std::string(before, ' ').c_str());

    EXPECT_EQ(log.lines().size(), 130u);
    for (const auto& line : log.lines()) EXPECT_EQ(std::string::npos, line.find("00:AA:01:01:00:01"));
}

TEST(LineLimit, CountsWhatFollowsAndSaysItAMinuteLater) {
    using namespace std::chrono_literals;
    const std::chrono::steady_clock::time_point start{};
    seat::LineLimit limit;

    EXPECT_EQ("", limit.pass(start));
    for (int i = 0; i < 1000; ++i) EXPECT_FALSE(limit.pass(start + i * 59ms));
    EXPECT_EQ(" (and 1000 like it before)", limit.pass(start + 60s));
    EXPECT_FALSE(limit.pass(start + 61s));
    EXPECT_EQ(" (and 1 like it before)", limit.pass(start + 120s));
}

TEST(RepeatedLines, AreCountedForAMinuteEachByItself) {
    using namespace std::chrono_literals;
    const std::chrono::steady_clock::time_point start{};
    seat::RepeatedLines lines;

    EXPECT_EQ(0u, lines.pass("one", start));
    EXPECT_EQ(0u, lines.pass("another", start + 30s));
    for (int i = 0; i < 1000; ++i) EXPECT_EQ(std::nullopt, lines.pass("one", start + i * 59ms));
    EXPECT_EQ(1000u, lines.pass("one", start + 60s));
    EXPECT_EQ(std::nullopt, lines.pass("another", start + 89s));
    EXPECT_EQ(1u, lines.pass("another", start + 90s));
    EXPECT_EQ(std::nullopt, lines.pass("one", start + 119s));
}

TEST(RepeatedLines, OfManyTheOneThatWasLongestUnusedIsForgotten) {
    seat::RepeatedLines lines;
    const auto line = [](int number) { return "line " + std::to_string(number); };
    for (int i = 0; i < 16; ++i) EXPECT_EQ(0u, lines.pass(line(i)));
    EXPECT_EQ(std::nullopt, lines.pass(line(0))); // used again

    EXPECT_EQ(0u, lines.pass("one more"));

    EXPECT_EQ(std::nullopt, lines.pass(line(0)));
    EXPECT_EQ(std::nullopt, lines.pass(line(2)));
    EXPECT_EQ(0u, lines.pass(line(1)));
}

TEST(LogLine, SaysHowOftenItWasLeftOut) {
    const auto made = [](std::uint64_t count, const char* format, ...) {
        std::va_list arguments;
        va_start(arguments, format);
        seat::LogLine line(format, arguments);
        va_end(arguments);
        line.addRepetitions(count);
        return std::string(line.text());
    };

    EXPECT_EQ("no 5", made(0, "no %d", 5));
    EXPECT_EQ("no 5 (and 7 times before)", made(7, "no %d", 5));
    const std::string endless = made(~0ull, "%s", std::string(5000, 'x').c_str());
    EXPECT_TRUE(endless.ends_with("x (and 18446744073709551615 times before)"));
}

} // namespace
