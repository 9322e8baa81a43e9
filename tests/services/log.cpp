#include "services/common/log.h"

#include <gtest/gtest.h>

#include <chrono>
#include <fcntl.h>
#include <future>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

class LogTest : public testing::Test {
protected:
    LogTest() {
        services::setLogSink([this](std::string_view line) { lines.emplace_back(line); });
    }
    ~LogTest() override { services::setLogSink({}); }

    std::vector<std::string> lines;
};

TEST_F(LogTest, ALineIsWrittenOnceAndThenCounted) {
    for (int i = 0; i < 1000; ++i) services::log("pairing with %s: refused", "..:00:01");

    EXPECT_EQ(lines, std::vector<std::string>{"pairing with ..:00:01: refused"});
}

TEST_F(LogTest, LinesThatTakeTurnsAreCountedToo) {
    for (int i = 0; i < 1000; ++i) services::log("line %d", i % 4);

    EXPECT_EQ(lines.size(), 4U);
}

TEST_F(LogTest, WhatAPeerSaysStaysOneLine) {
    services::log("pairing with %s", "a\nb\x1b[2Jc\x7f");

    EXPECT_EQ(lines, std::vector<std::string>{"pairing with a b [2Jc "});
}

TEST_F(LogTest, AnEndlessLineIsCut) {
    services::log("%s", std::string(100'000, 'x').c_str());

    ASSERT_EQ(lines.size(), 1U);
    EXPECT_LT(lines[0].size(), 2000U);
}

TEST_F(LogTest, NoWholeBluetoothAddressIsWritten) {
    services::log("pairing with %s: refused", "00:AA:01:01:00:01");

    EXPECT_EQ(lines, std::vector<std::string>{"pairing with ..:00:01: refused"});
}

TEST(Log, AReaderThatDoesNotKeepUpHoldsNobodyUp) {
    int ends[2];
    ASSERT_EQ(::pipe2(ends, O_CLOEXEC | O_NONBLOCK), 0);
    while (::write(ends[1], "x", 1) == 1) {
    }
    ::fcntl(ends[1], F_SETFL, 0); // as a program's standard error is: it waits
    const int before = ::dup(STDERR_FILENO);
    ::dup2(ends[1], STDERR_FILENO);

    auto logged = std::async(std::launch::async, [] { services::log("nobody reads this"); });
    const bool isHeldUp = logged.wait_for(std::chrono::seconds(5)) != std::future_status::ready;
    char bytes[65536];
    while (::read(ends[0], bytes, sizeof bytes) > 0) {
    }
    logged.wait();
    ::dup2(before, STDERR_FILENO);
    for (const int descriptor : {before, ends[0], ends[1]}) ::close(descriptor);

    EXPECT_FALSE(isHeldUp);
}

} // namespace
