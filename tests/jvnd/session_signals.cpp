#include "services/jvnd/SessionSignals.h"

#include "services/common/log.h"
#include "tests/support/BusPeer.h"
#include "tests/support/PrivateBus.h"

#include <csignal>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace jvnd;
using namespace std::chrono_literals;
using testing_support::BusPeer;
using testing_support::PrivateBus;

namespace {

class SessionSignalsTest : public ::testing::Test {
protected:
    SessionSignalsTest() {
        services::setLogSink([](std::string_view) {});
    }
    ~SessionSignalsTest() override { services::setLogSink({}); }

    void change(const BusPeer& peer) { peer.emitSignal("/com/quorrel/jvnprefs", "com.quorrel.jvnprefs", "changed"); }
    // Posts again until it is heard: nobody says when the bus begins to listen for us.
    bool isHeardFrom(const BusPeer& peer) {
        heard.clear();
        for (int i = 0; i < 100 && heard.empty(); ++i) {
            change(peer);
            peer.flush();
            loop.runUntil([this] { return !heard.empty(); }, 100ms);
        }
        return !heard.empty();
    }
    std::unique_ptr<SessionSignals> listen() {
        return std::make_unique<SessionSignals>(
            loop, std::vector<std::string>{"com.quorrel.jvnprefs.changed", "com.quorrel.jvninitbt"},
            [this](const std::string& name) { heard.push_back(name); });
    }

    services::EventLoop loop;
    std::vector<std::string> heard;
};

TEST_F(SessionSignalsTest, NotificationsAreHeardByTheirNames) {
    const PrivateBus bus;
    const BusPeer peer(bus.address());
    const auto signals = listen();
    ASSERT_TRUE(isHeardFrom(peer));
    EXPECT_EQ(heard.back(), "com.quorrel.jvnprefs.changed");

    heard.clear();
    peer.emitSignal("/com/quorrel/jvnprefs", "com.quorrel.jvnprefs", "other");
    peer.emitSignal("/com/quorrel", "com.quorrel", "jvnfailure");
    peer.emitSignal("/com/quorrel", "com.quorrel", "jvninitbt");
    peer.flush();

    ASSERT_TRUE(loop.runUntil([this] { return !heard.empty(); }));
    EXPECT_EQ(heard, std::vector<std::string>{"com.quorrel.jvninitbt"});
}

TEST_F(SessionSignalsTest, AnotherUsersNotificationsAreNotHeard) {
    if (::geteuid() != 0) GTEST_SKIP() << "needs root, to be somebody else";
    const PrivateBus bus(PrivateBus::Start::Now, "DBUS_SESSION_BUS_ADDRESS", PrivateBus::Admits::EveryUser);
    const BusPeer own(bus.address());
    const auto signals = listen();
    ASSERT_TRUE(isHeardFrom(own));
    int posted[2];
    ASSERT_EQ(::pipe(posted), 0);
    const ::pid_t child = ::fork();
    if (child == 0) {
        if (::setuid(65534) != 0) ::_exit(1);
        const BusPeer other(bus.address());
        other.emitSignal("/com/quorrel", "com.quorrel", "jvninitbt");
        other.call("org.freedesktop.DBus", "/", "org.freedesktop.DBus", "GetId"); // by then the bus has passed it on
        [[maybe_unused]] const auto written = ::write(posted[1], "x", 1);
        ::pause();
        ::_exit(0);
    }
    ::close(posted[1]);
    char byte = 0;
    EXPECT_EQ(::read(posted[0], &byte, 1), 1) << "the other user cannot post";
    heard.clear();
    change(own);
    own.flush();

    EXPECT_TRUE(loop.runUntil([this] { return !heard.empty(); }));

    EXPECT_EQ(heard, std::vector<std::string>{"com.quorrel.jvnprefs.changed"});
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
    ::close(posted[0]);
}

TEST_F(SessionSignalsTest, WithoutABusNothingHappens) {
    const PrivateBus bus(PrivateBus::Start::Later);
    const auto signals = listen();
    loop.runUntil([] { return false; }, 50ms);
    EXPECT_TRUE(heard.empty());
}

TEST_F(SessionSignalsTest, ABusThatComesBackIsHeardAgain) {
    PrivateBus bus;
    const auto signals = listen();
    ASSERT_TRUE(isHeardFrom(BusPeer(bus.address())));

    bus.kill();
    loop.runUntil([] { return false; }, 50ms);
    bus.start();

    EXPECT_TRUE(isHeardFrom(BusPeer(bus.address())));
}

TEST_F(SessionSignalsTest, AFloodOfNotificationsIsHeardAtLeastOnce) {
    const PrivateBus bus;
    const BusPeer peer(bus.address());
    const auto signals = listen();
    ASSERT_TRUE(isHeardFrom(peer));
    heard.clear();
    for (int i = 0; i < 2000; ++i) change(peer);
    peer.flush();
    EXPECT_TRUE(loop.runUntil([this] { return !heard.empty(); }));
}

} // namespace
