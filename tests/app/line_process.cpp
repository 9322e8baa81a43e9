#include "app/LineProcess.h"

#include "system/run_loop/PollLoop.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/descriptors.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <fstream>
#include <sstream>

namespace {

using app::LineProcess;
using Clock = std::chrono::steady_clock;

class LineProcessTest : public ::testing::Test {
protected:
    std::unique_ptr<LineProcess> shell(const std::string& script) {
        return LineProcess::start("/bin/sh", {"-c", script}, [this](const std::string& line) { heard += line + "|"; });
    }
    bool hears(const std::string& text) {
        return loop.runUntil([&] { return heard == text; }, 5);
    }
    std::string contents(const std::string& name) const {
        std::stringstream text;
        text << std::ifstream(folder.file(name)).rdbuf();
        return text.str();
    }

    seat::PollLoop loop;
    testing_support::TemporaryFolder folder;
    std::string heard;
};

TEST_F(LineProcessTest, LinesAreHeardWholeAndInOrder) {
    const auto process = shell("printf 'one\\ntw'; sleep 0.05; printf 'o\\n\\nthree\\nfour'");
    ASSERT_TRUE(process);

    EXPECT_TRUE(hears("one|two||three|"));
    EXPECT_EQ(heard, "one|two||three|"); // what has no end is no line
}

TEST_F(LineProcessTest, ItsInputEndsWithThisProcess) {
    const auto process = shell("exec 3</proc/self/fd/0; test -p /proc/self/fd/0 && echo a pipe");
    EXPECT_TRUE(hears("a pipe|"));
}

TEST_F(LineProcessTest, ALineCanBeWaitedForWithoutTheLoop) {
    const auto process = shell("echo early; sleep 0.05; echo ready; cat");

    EXPECT_TRUE(process->waitForLine("ready", 5));
    EXPECT_EQ(heard, "early|ready|");
}

TEST_F(LineProcessTest, WaitingEndsWithTheOutputOrTheTime) {
    const auto ended = shell("echo nothing");
    const auto begun = Clock::now();
    EXPECT_FALSE(ended->waitForLine("ready", 5));
    EXPECT_LT(Clock::now() - begun, std::chrono::seconds(4));

    const auto silent = shell("sleep 5");
    EXPECT_FALSE(silent->waitForLine("ready", 0.05));
}

TEST_F(LineProcessTest, AProgramThatIsNotThereIsNone) {
    EXPECT_FALSE(LineProcess::start(folder.file("none"), {}, nullptr));
    EXPECT_FALSE(LineProcess::start(folder.path(), {}, nullptr)); // a folder
}

TEST_F(LineProcessTest, ItIsAskedToEndAndReaped) {
    auto process =
        shell("trap 'echo asked > " + folder.file("end") + "; exit' TERM; echo ready; while :; do sleep 0.01; done");
    ASSERT_TRUE(process->waitForLine("ready", 5));
    const auto children = testing_support::unreapedChildren();

    process.reset();

    EXPECT_EQ(contents("end"), "asked\n");
    EXPECT_EQ(testing_support::unreapedChildren(), children - 1);
}

TEST_F(LineProcessTest, OneThatDoesNotListenIsEndedAfterASecond) {
    auto process = shell("trap '' TERM; echo ready; while :; do sleep 0.01; done");
    ASSERT_TRUE(process->waitForLine("ready", 5));
    const auto children = testing_support::unreapedChildren();
    const auto begun = Clock::now();

    process.reset();

    EXPECT_GE(Clock::now() - begun, std::chrono::milliseconds(900));
    EXPECT_EQ(testing_support::unreapedChildren(), children - 1);
}

TEST_F(LineProcessTest, OneThatEndsByItselfIsReapedAtOnceAndSaidAfterItsLastLine) {
    const auto children = testing_support::unreapedChildren();
    const auto process = shell("trap 'echo last words; exit 3' USR1; echo ready; while :; do sleep 0.01; done");
    ASSERT_TRUE(process->waitForLine("ready", 5));
    process->setEndListener([this](const std::string& how) { heard += how + "|"; });

    ::kill(process->identifier(), SIGUSR1);

    EXPECT_TRUE(hears("ready|last words|ended with 3|"));
    EXPECT_EQ(process->identifier(), 0);
    EXPECT_EQ(testing_support::unreapedChildren(), children);
}

TEST_F(LineProcessTest, OneThatIsKilledIsSaidToBe) {
    const auto process = shell("cat");
    ASSERT_TRUE(process);
    process->setEndListener([this](const std::string& how) { heard += how + "|"; });

    ::kill(process->identifier(), SIGKILL);

    EXPECT_TRUE(hears("was ended by signal 9|"));
}

TEST_F(LineProcessTest, WhoHearsOfTheEndMayDestroyIt) {
    auto process = shell("cat");
    ASSERT_TRUE(process);
    process->setEndListener([&](const std::string&) { process.reset(); });

    ::kill(process->identifier(), SIGKILL);

    EXPECT_TRUE(loop.runUntil([&] { return !process; }, 5));
}

TEST_F(LineProcessTest, ItsChildrenGetNoneOfOurDescriptors) {
    const auto list = [&] {
        heard.clear();
        EXPECT_TRUE(shell("echo /proc/self/fd/*; echo end")->waitForLine("end", 5));
        return heard;
    };
    const auto before = list();
    const auto other = shell("cat");
    const auto another = shell("cat");

    EXPECT_EQ(list(), before);
}

TEST_F(LineProcessTest, NothingIsLeftOpenBehindIt) {
    const auto before = testing_support::openDescriptors();
    for (int i = 0; i < 5; ++i) shell("echo x");
    EXPECT_FALSE(LineProcess::start(folder.file("none"), {}, nullptr));

    EXPECT_EQ(testing_support::openDescriptors(), before);
}

} // namespace
