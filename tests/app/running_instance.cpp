#include "app/RunningInstance.h"

#include "kit/dispatch/main_queue.h"
#include "system/run_loop/PollLoop.h"
#include "tests/support/CapturedLog.h"
#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <future>
#include <sys/socket.h>
#include <sys/un.h>
#include <thread>

namespace {

using app::RunningInstance;
using testing::HasSubstr;

class RunningInstanceTest : public testing::Test {
protected:
    // Another program, as far as the socket can tell. True when it would open a window of its own.
    std::future<bool> startAnother(const std::string& bundle) {
        return std::async(std::launch::async, [this, bundle] {
            const bool isFirst = RunningInstance::start(folder.path(), bundle) != nullptr;
            seat::queueOnMain([] {}); // wakes who waits for the outcome
            return isFirst;
        });
    }
    bool opensItsOwn(std::future<bool> other) {
        loop.runUntil([&] { return other.wait_for(std::chrono::seconds(0)) == std::future_status::ready; }, 10);
        return other.get();
    }

    testing_support::TemporaryFolder folder;
    seat::PollLoop loop;
    testing_support::CapturedLog log;
};

TEST_F(RunningInstanceTest, ASecondStartRaisesTheFirstWithItsToken) {
    const auto first = RunningInstance::start(folder.path(), "Page.bundle");
    ASSERT_TRUE(first);
    std::vector<std::string> tokens;
    first->setRaiseHandler([&](const std::string& token) { tokens.push_back(token); });

    ::setenv("XDG_ACTIVATION_TOKEN", "of-the-launcher", 1);
    EXPECT_FALSE(opensItsOwn(startAnother("Page.bundle")));
    ::unsetenv("XDG_ACTIVATION_TOKEN");
    EXPECT_FALSE(opensItsOwn(startAnother("Page.bundle")));

    EXPECT_EQ(tokens, (std::vector<std::string>{"of-the-launcher", ""}));
}

TEST_F(RunningInstanceTest, AnotherPageGetsItsOwnWindow) {
    const auto first = RunningInstance::start(folder.path(), "Page.bundle");
    bool isRaised = false;
    first->setRaiseHandler([&](const std::string&) { isRaised = true; });

    EXPECT_TRUE(opensItsOwn(startAnother("Other.bundle")));
    EXPECT_FALSE(isRaised);
}

TEST_F(RunningInstanceTest, OneThatIsStillStartingIsWaitedFor) {
    const auto first = RunningInstance::start(folder.path(), "Page.bundle");
    auto other = startAnother("Page.bundle");
    EXPECT_EQ(other.wait_for(std::chrono::milliseconds(50)), std::future_status::timeout);

    first->setRaiseHandler([](const std::string&) {});

    EXPECT_FALSE(opensItsOwn(std::move(other)));
}

TEST_F(RunningInstanceTest, OneThatDoesNotAnswerIsLeftAloneAndNamed) {
    const auto first = RunningInstance::start(folder.path(), "Page.bundle");

    EXPECT_TRUE(RunningInstance::start(folder.path(), "Page.bundle"));

    ASSERT_EQ(log.lines().size(), 1u);
    EXPECT_THAT(log.lines()[0], HasSubstr("raising the window that shows " + folder.path()));
}

TEST_F(RunningInstanceTest, OneThatHasEndedOrWasKilledIsNotThere) {
    EXPECT_TRUE(RunningInstance::start(folder.path(), "Page.bundle")) << "and it ends at once";
    EXPECT_FALSE(std::filesystem::exists(folder.path() + "/.window"));

    // What a killed one leaves.
    const int left = ::socket(AF_UNIX, SOCK_SEQPACKET, 0);
    sockaddr_un address{AF_UNIX, {}};
    (folder.path() + "/.window").copy(address.sun_path, sizeof address.sun_path - 1);
    ASSERT_EQ(::bind(left, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    ::close(left);

    const auto next = RunningInstance::start(folder.path(), "Page.bundle");
    next->setRaiseHandler([](const std::string&) {});
    EXPECT_FALSE(opensItsOwn(startAnother("Page.bundle")));
    EXPECT_TRUE(log.lines().empty());
}

TEST_F(RunningInstanceTest, CallersThatSayNothingTakeNoOnesPlaceForGood) {
    const auto first = RunningInstance::start(folder.path(), "Page.bundle");
    first->setRaiseHandler([](const std::string&) {});
    sockaddr_un address{AF_UNIX, {}};
    (folder.path() + "/.window").copy(address.sun_path, sizeof address.sun_path - 1);
    std::vector<int> silent;
    for (int i = 0; i < 20; ++i) {
        silent.push_back(::socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0));
        ASSERT_EQ(::connect(silent.back(), reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
        loop.runReady();
    }
    for (const int caller : silent) ::close(caller);

    EXPECT_FALSE(opensItsOwn(startAnother("Page.bundle")));
}

} // namespace
