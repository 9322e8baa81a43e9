#include "platform/log.h"

#include "tests/support/CapturedLog.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::ElementsAre;

TEST(Log, WritesOneLineAtATime) {
    testing::internal::CaptureStderr();

    NSLog("reading %s: %d", "a file", 5);
    NSLog("again");

    EXPECT_EQ(testing::internal::GetCapturedStderr(), "joyvane: reading a file: 5\njoyvane: again\n");
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

} // namespace
