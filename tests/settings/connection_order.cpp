// What others see of a whole session, in its order: the daemon on its socket, and a listener on the bus.

#include "system/bus/SessionBus.h"
#include "tests/settings/connection_test.h"
#include "tests/support/BusPeer.h"
#include "tests/support/PrivateBus.h"

#include <atomic>
#include <mutex>

namespace {

class ConnectionOrder : public Connection {
protected:
    // Tests before this one ran without a bus: the connection begins afresh with this one's.
    ConnectionOrder() { seat::SessionBus::shared().close(); }
    ~ConnectionOrder() override {
        app.close();
        page = nullptr;
        seat::SessionBus::shared().close();
    }

    testing_support::PrivateBus bus;
};

TEST_F(ConnectionOrder, AListenerHasHeardThatBluetoothIsWantedBeforeTheDaemonIsAskedToConnect) {
    const testing_support::BusPeer listener(bus.address());
    listener.listen("type='signal',interface='com.quorrel'");
    using Clock = std::chrono::steady_clock;
    std::mutex mutex;
    std::vector<std::string> heard;
    int inTime = 0;
    std::atomic<Clock::time_point> tapped;
    start([&](DaemonPeer& peer) {
        const Bytes head = peer.read(12);
        if (head.size() < 12) return;
        if (head[0] == 5) return peer.write(reply(0, 7));
        // What has reached the listener by now, without waiting for anything; but a post does not wait longer than that
        // for a bus that others keep from its work.
        const bool isInTime = Clock::now() - tapped.load() < std::chrono::milliseconds(100);
        const std::string signal = listener.nextSignal(std::chrono::milliseconds(isInTime ? 0 : 20'000));
        const std::lock_guard lock(mutex);
        heard.push_back(signal);
        inTime += isInTime;
    });
    showSettled(1, true);

    for (int i = 0; i < 50; ++i) {
        tapped = Clock::now();
        exchange();
    }

    const std::lock_guard lock(mutex);
    EXPECT_GT(inTime, 0);
    EXPECT_EQ(heard, std::vector<std::string>(50, "/com/quorrel com.quorrel.jvninitbt"));
}

TEST_F(ConnectionOrder, ADisconnectAnnouncesNothing) {
    const testing_support::BusPeer listener(bus.address());
    listener.listen("type='signal',interface='com.quorrel'");
    start(answering(reply(0, 0), {}));
    showSettled(1, true);
    ASSERT_TRUE(app.waitUntil([&] { return page->controllerConnected(); }));

    exchange();

    EXPECT_FALSE(page->controllerConnected());
    EXPECT_EQ(listener.nextSignal(std::chrono::milliseconds(0)), "");
}

TEST_F(ConnectionOrder, TheWholeTalkOfASession) {
    bool connected = false; // the daemon's thread alone
    start([&](DaemonPeer& peer) {
        const Bytes head = peer.read(12);
        if (head.size() < 12) return;
        if (head[0] == 5) peer.write(reply(0, connected ? 1 : 7));
        if (head[0] == 1) {
            peer.read(8);
            peer.write(reply(8, 0));
            connected = true;
        }
        if (head[0] == 0) connected = false;
        peer.readToEnd();
    });
    showSettled(1, true);
    exchange(); // connects
    app.navigation()->pushViewController_animated(UIViewController::alloc()->init(), false);
    app.goBack();
    ASSERT_TRUE(daemon->waitForConnections(3));
    ASSERT_TRUE(app.waitUntil([&] { return rowIsEnabled() && seat::mainQueueIsEmpty(); }));
    exchange(); // disconnects
    ASSERT_TRUE(app.tap("Restart Daemons"));
    ASSERT_TRUE(daemon->waitForConnections(5));

    std::vector<std::string> talk;
    for (const auto& bytes : daemon->connections()) talk.push_back(hex(bytes));
    const std::string query = "05 00 00 00 00 00 00 00 00 00 00 00";
    EXPECT_EQ(talk, (std::vector<std::string>{
                        query,
                        connectFrame + " 04 00 00 00 01 00 00 00 00 00 00 00 00 4e fd 00",
                        query,
                        "00 00 00 00 01 00 00 00 00 00 00 00 06 00 00 00 01 00 00 00 00 00 00 00",
                        "03 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00",
                    }));
    EXPECT_EQ(initialisations, 1);
    EXPECT_EQ(failures, 0);
}

} // namespace
