// The page's real waits, at their full length, with the main thread watched all along; and the stand-in tool, started
// and interrupted a hundred times.

#include "system/socket/connection_listener.h"
#include "tests/settings/connection_test.h"
#include "tests/settings/pairing_test.h"
#include "tests/support/Heartbeat.h"
#include "tests/support/descriptors.h"

#include <atomic>
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace {

using Clock = std::chrono::steady_clock;

double secondsSince(Clock::time_point start) { return std::chrono::duration<double>(Clock::now() - start).count(); }

class LongWaits : public Connection {};

TEST_F(LongWaits, AConnectIsGivenUpAfterTwentySecondsAndTheMainThreadIsNeverLate) {
    start([](DaemonPeer& peer) {
        const Bytes head = peer.read(12);
        if (head.size() == 12 && head[0] == 5) return peer.write(reply(0, 7));
        peer.readToEnd();
    });
    showSettled(1, true);
    std::atomic<int> silences = 0;
    seat::setConnectionListener([&](const std::string&, seat::ConnectionEvent event) {
        if (event == seat::ConnectionEvent::Silent) ++silences;
    });
    ASSERT_TRUE(app.tap("Connect Controller"));
    const auto begun = Clock::now();
    const testing_support::Heartbeat heartbeat;
    EXPECT_FALSE(rowIsEnabled());

    EXPECT_TRUE(app.waitUntil([&] { return rowIsEnabled(); }, 30));

    EXPECT_GT(secondsSince(begun), 19);
    EXPECT_LT(secondsSince(begun), 25) << "a busy machine may be late";
    EXPECT_GT(heartbeat.beats(), 1000);
    EXPECT_LT(heartbeat.longestMilliseconds(), 500); // a wait of its own takes longer, other processes less
    ASSERT_TRUE(daemon->waitForConnections(2));
    EXPECT_EQ(hex(daemon->connections()[1]), connectFrame + " 06 00 00 00 00 00 00 00 00 00 00 00");
    EXPECT_FALSE(page->controllerConnected());
    EXPECT_TRUE(app.find("Connect Controller"));
    EXPECT_EQ(log.count("connect: waiting for the daemon's answer: none came in time"), 1u);
    EXPECT_EQ(silences, 1) << "of which the program around the page tells the user";
    seat::setConnectionListener({});
}

// A lease makes whoever opens the file wait, as a disk that has to wake up does.
class Lease {
public:
    explicit Lease(const std::string& file) : m_former(::signal(SIGIO, SIG_IGN)) {
        m_descriptor = ::open(file.c_str(), O_RDONLY | O_CLOEXEC);
        m_held = ::fcntl(m_descriptor, F_SETLEASE, F_WRLCK) == 0;
    }
    ~Lease() {
        ::close(m_descriptor);
        ::signal(SIGIO, m_former);
    }
    Lease(const Lease&) = delete;
    Lease& operator=(const Lease&) = delete;

    bool isHeld() const { return m_held; }

private:
    ::sighandler_t m_former;
    int m_descriptor = -1;
    bool m_held = false;
};

class RealTool : public Pairing {
protected:
    RealTool() { ::setenv("JOYVANE_SIMULATE", "1", 1); }
    ~RealTool() override { ::unsetenv("JOYVANE_SIMULATE"); }

    void installTool() {
        const std::filesystem::path root = app.root();
        std::filesystem::create_directories(root / "usr/bin");
        // A file of its own, which nobody else has open.
        std::filesystem::copy_file(JVNDISCOVERY_PROGRAM, root / "usr/bin/jvndiscovery");
    }
    // Somebody holds it until it blinks.
    void putIntoPairingMode() {
        const std::filesystem::path world = app.root() + "/var/joyvane/simulated-controllers";
        std::filesystem::create_directories(world.parent_path());
        std::ofstream(world.string() + ".new") << "controller 00:AA:01:01:00:01 type=1 pairing : Pad\n";
        std::filesystem::rename(world.string() + ".new", world);
    }
    bool isPaired() {
        return app.waitUntil([&] { return overlay() == "hidden"; }, 20) && app.alert() && app.dismissAlert();
    }
};

TEST_F(RealTool, AToolThatTakesTenSecondsToLoadHoldsNothingUp) {
    installTool();
    showWithServer(1);
    auto lease = std::make_unique<Lease>(app.root() + "/usr/bin/jvndiscovery");
    if (!lease->isHeld()) GTEST_SKIP() << "this file system has no leases";
    const testing_support::Heartbeat heartbeat;
    const auto begun = Clock::now();

    ASSERT_TRUE(app.tap("Pair Controller"));
    EXPECT_FALSE(app.waitUntil([&] { return overlay() != activating; }, 10));
    EXPECT_GE(secondsSince(begun), 10);
    lease.reset();

    EXPECT_TRUE(isPaired());
    EXPECT_LT(heartbeat.longestMilliseconds(), 500);
}

TEST_F(RealTool, TwentyWholePairingsLeaveNoDescriptorNoThreadAndNoZombie) {
    installTool();
    showWithServer(1);
    const auto pair = [&] {
        putIntoPairingMode();
        if (!app.tap("Pair Controller")) return false;
        const int tool = page->discoveryTask()->processIdentifier();
        return tool != 0 && isPaired() && app.waitUntil([&] { return platform::kill(tool, 0) == -1; });
    };
    ASSERT_TRUE(pair());
    const auto descriptors = testing_support::openDescriptors();
    const auto threads = testing_support::runningThreads();
    const auto children = testing_support::unreapedChildren();

    for (int i = 0; i < 20; ++i) ASSERT_TRUE(pair()) << i;

    // What keeps guard over a tool ends a moment after it.
    EXPECT_TRUE(app.waitUntil([&] { return testing_support::unreapedChildren() <= children; }));
    EXPECT_LE(testing_support::openDescriptors(), descriptors);
    EXPECT_LE(testing_support::runningThreads(), threads);
    EXPECT_TRUE(app.preference("PS4BluetoothAddress"));
}

} // namespace
