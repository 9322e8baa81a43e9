#include "simulator/daemon_manner.h"

#include <gtest/gtest.h>

namespace {

using namespace simulator;

TEST(DaemonManner, LinesAddUpUntilItBehavesAgain) {
    DaemonManner manner;
    for (const auto* const line : {"delay 500", "bytes 6", "hold", "", "# nothing", "close answer", "reply 08 ff"})
        EXPECT_EQ("", changeManner(manner, line));

    EXPECT_EQ(500, manner.delay);
    EXPECT_EQ(6u, manner.bytes);
    EXPECT_TRUE(manner.holds);
    EXPECT_EQ(DaemonManner::CloseAt::Answer, manner.closeAt);
    EXPECT_EQ((Bytes{8, 255}), manner.reply);

    EXPECT_EQ("", changeManner(manner, "behave"));
    EXPECT_EQ(0, manner.delay);
    EXPECT_EQ(std::nullopt, manner.bytes);
}

TEST(DaemonManner, WhatIsNotUnderstoodIsSaid) {
    DaemonManner manner;
    for (const auto* const line : {"nonsense", "delay", "delay x", "delay -1", "delay 1 2", "hold 1", "close",
                                   "close now", "reply 100", "reply xy"})
        EXPECT_NE("", changeManner(manner, line)) << line;
}

} // namespace
