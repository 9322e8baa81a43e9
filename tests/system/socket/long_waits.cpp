// Waits of the length that the page's are of.

#include "tests/system/socket/SocketTest.h"

#include <algorithm>
#include <thread>
#include <vector>

namespace {

using testing_support::ScriptedDaemon;

class SocketWaits : public SocketTest {};

// Side by side, each begun at another moment of the system's coarse clock.
TEST_F(SocketWaits, AReceiveIsGivenUpWithinATenthOfASecondAfterItsTwentySeconds) {
    constexpr long seconds = 20;
    ScriptedDaemon daemon(m_folder.path(), [](auto& peer) { peer.waitForRelease(); });
    std::vector<double> late(8);
    {
        std::vector<std::jthread> waits;
        for (auto& each : late) {
            const int descriptor = connected();
            ASSERT_EQ(setTimeout(descriptor, seconds, 0), 0);
            waits.emplace_back([&each, descriptor] {
                char byte = 0;
                const auto start = Clock::now();
                EXPECT_EQ(platform::recv(descriptor, &byte, 1, platform::MSG_WAITALL_FLAG), -1);
                each = millisecondsSince(start) - 1000.0 * seconds;
                platform::close(descriptor);
            });
            std::this_thread::sleep_for(std::chrono::milliseconds(230));
        }
    }
    daemon.release();

    std::sort(late.begin(), late.end());
    EXPECT_GE(late.front(), 0);
    EXPECT_LT(late[late.size() / 2], 100) << "a busy machine may be late with some";
}

} // namespace
