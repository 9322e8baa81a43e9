#include "services/jvninputd/Service.h"

#include "services/jvninputd/listening_socket.h"
#include "tests/jvninputd/Peer.h"
#include "tests/support/HeldClock.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <unistd.h>

using namespace jvninputd;
using namespace std::chrono_literals;

namespace {

// The whole program but its main(), with a clock that is held.
class ServiceTest : public ::testing::Test {
protected:
    // Whether it has ended by itself after this time, and with which code.
    std::optional<int> endAfter(std::chrono::microseconds time) {
        services::EventLoop::Source afterwards;
        const auto passing = m_loop.soon([&] {
            m_clock.advance(m_loop, time);
            afterwards = m_loop.soon([this] { m_loop.quit(stillRuns); });
        });
        const int code = m_loop.run();
        return code == stillRuns ? std::nullopt : std::optional(code);
    }
    // Until everything that was sent is dealt with.
    void settle() {
        for (int i = 0; i < 20; ++i) {
            bool ran = false;
            const auto marker = m_loop.soon([&ran] { ran = true; });
            m_loop.runUntil([&ran] { return ran; });
        }
    }

    static constexpr int stillRuns = 1000;
    testing_support::TemporaryFolder m_folder;
    std::string m_path = m_folder.file("socket");
    testing_support::HeldClock m_clock;
    services::EventLoop m_loop{m_clock};
    Service m_service{m_loop, listeningSocket(m_path)};
};

TEST_F(ServiceTest, EndsAfterAMinuteForWhichNobodyHasCome) {
    EXPECT_EQ(endAfter(59s), std::nullopt);
    EXPECT_EQ(endAfter(1s), 0);
}

TEST_F(ServiceTest, StaysWhileThereIsAClientAndEndsAMinuteAfterTheLastHasGone) {
    if (::geteuid() != 0) GTEST_SKIP() << "only users who are logged in at the seat, and root, are let in";
    ASSERT_EQ(endAfter(59s), std::nullopt);
    Peer client(m_path);
    client.hello(input::Role::observe);
    settle();
    EXPECT_EQ(endAfter(1h), std::nullopt);
    EXPECT_FALSE(client.closed());

    client.close();
    settle();
    EXPECT_EQ(endAfter(59s), std::nullopt);
    EXPECT_EQ(endAfter(1s), 0);
}

} // namespace
