// How long the page lets a daemon take, as its own connections say it.

#include "tests/settings/connection_test.h"

#include <filesystem>
#include <sys/socket.h>
#include <sys/time.h>

namespace {

// The receive time-outs of this process's sockets that have one, in microseconds.
std::vector<long> receiveTimeouts() {
    std::vector<long> found;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        ::timeval value{};
        ::socklen_t size = sizeof value;
        if (::getsockopt(std::stoi(entry.path().filename()), SOL_SOCKET, SO_RCVTIMEO, &value, &size) != 0) continue;
        if (const long microseconds = value.tv_sec * 1'000'000 + value.tv_usec) found.push_back(microseconds);
    }
    return found;
}

using ReplyTimes = Connection;

TEST_F(ReplyTimes, AQueryHasOneSecondAndAConnectTwenty) {
    start([](DaemonPeer& peer) {
        const Bytes head = peer.read(12);
        if (!head.empty() && head[0] == 1) peer.read(8);
        peer.waitForRelease();
    });
    show(1, 1, {{"PS4BluetoothAddress", NSData::dataWithBytes(address)}});
    EXPECT_TRUE(app.waitUntil([] { return receiveTimeouts() == std::vector<long>{1'000'000}; }));
    daemon->release();
    ASSERT_TRUE(app.waitUntil([&] { return daemon->connectionCount() == 1 && rowIsEnabled(); }));
    app.settle();

    ASSERT_TRUE(app.tap("Connect Controller"));

    EXPECT_TRUE(app.waitUntil([] { return receiveTimeouts() == std::vector<long>{20'000'000}; }));
    daemon->release();
    EXPECT_TRUE(app.waitUntil([&] { return rowIsEnabled(); }));
}

} // namespace
