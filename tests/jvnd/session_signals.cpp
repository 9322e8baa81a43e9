#include "services/jvnd/SessionSignals.h"

#include "services/common/log.h"
#include "tests/support/BusPeer.h"
#include "tests/support/PrivateBus.h"

#include <gtest/gtest.h>

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
