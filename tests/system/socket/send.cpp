#include "tests/system/socket/SocketTest.h"

#include <csignal>
#include <vector>

namespace {

class SocketSend : public SocketTest {};

TEST_F(SocketSend, ToAPeerThatHasGoneGivesNoSignal) {
    const auto former = ::signal(SIGPIPE, SIG_DFL); // it would end the test
    const testing_support::ScriptedDaemon daemon(m_folder.path(), [](auto& peer) { peer.close(); });
    const int descriptor = connected();
    ASSERT_TRUE(daemon.waitForConnections(1));

    EXPECT_EQ(-1, platform::send(descriptor, "twelve bytes", 12, 0));

    platform::close(descriptor);
    ::signal(SIGPIPE, former);
}

TEST_F(SocketSend, ToAPeerThatDoesNotReadNeverWaits) {
    testing_support::ScriptedDaemon daemon(m_folder.path(), [](auto& peer) { peer.waitForRelease(); });
    const int descriptor = connected();
    const std::vector<char> bytes(4096);

    const auto start = Clock::now();
    std::ptrdiff_t result = 0;
    for (int i = 0; i < 10'000 && result >= 0; ++i) result = platform::send(descriptor, bytes.data(), bytes.size(), 0);

    EXPECT_EQ(-1, result);
    EXPECT_LT(millisecondsSince(start), 5000);
    platform::close(descriptor);
    daemon.release();
}

} // namespace
