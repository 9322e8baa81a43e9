// Whom we listen to on the bus.

#include "tests/system/bus/BusTest.h"

#include <cstdlib>
#include <dbus/dbus.h>
#include <memory>
#include <unistd.h>

namespace {

using seat::BusCall;
using seat::BusSignal;
using seat::SessionBus;
using testing_support::BusPeer;
using testing_support::PrivateBus;

constexpr auto preferences = "com.quorrel.jvnprefs";
constexpr auto service = "com.quorrel.service";

class BusSenders : public BusTest {
protected:
    // Whether what was asked of the bus so far is set up there.
    bool settled() {
        bool answered = false;
        session().addName("com.quorrel.test.settled", [&](auto) { answered = true; });
        const bool result = runUntil([&] { return answered; });
        session().removeName("com.quorrel.test.settled");
        return result;
    }
};

TEST_F(BusSenders, WhoHasGoneBeforeTheBusCanSayWhoItWasIsNotHeard) {
    int heard = 0;
    session().addSignal(preferences, "changed", [&](const BusSignal&) { ++heard; });
    ASSERT_TRUE(settled());
    for (int i = 0; i < 5; ++i) BusPeer(bus.address()).emitSignal("/x", preferences, "changed");

    const BusPeer stays(bus.address());
    stays.emitSignal("/x", preferences, "changed");

    EXPECT_TRUE(runUntil([&] { return heard == 1; }));
    EXPECT_EQ(1u, m_log.count("it has gone, and nobody can say whose it was"));
    EXPECT_EQ(1u, m_log.all().size()) << ::testing::PrintToString(m_log.all());
}

TEST_F(BusSenders, WhatComesBeforeTheAnswerKeepsItsOrder) {
    std::vector<std::string> heard;
    for (const char* const member : {"first", "second", "third"})
        session().addSignal(preferences, member, [&, member](const BusSignal&) { heard.emplace_back(member); });
    ASSERT_TRUE(settled());
    const BusPeer peer(bus.address());
    for (const char* const member : {"second", "first", "third", "first"}) peer.emitSignal("/x", preferences, member);

    EXPECT_TRUE(runUntil([&] { return heard.size() == 4; }));
    EXPECT_EQ((std::vector<std::string>{"second", "first", "third", "first"}), heard);
}

TEST_F(BusSenders, ManyWhoComeAndGoAreAllHeard) {
    int heard = 0;
    session().addSignal(preferences, "changed", [&](const BusSignal&) { ++heard; });
    ASSERT_TRUE(settled());

    // More, one after the other, than are remembered.
    constexpr int atOnce = 100;
    int sent = 0;
    for (int generation = 0; generation < 3; ++generation) {
        std::vector<std::unique_ptr<BusPeer>> peers;
        for (int i = 0; i < atOnce; ++i) peers.push_back(std::make_unique<BusPeer>(bus.address()));
        for (int round = 0; round < 2; ++round) {
            for (const auto& peer : peers) peer->emitSignal("/x", preferences, "changed");
            sent += atOnce;
            ASSERT_TRUE(runUntil([&] { return heard == sent; })) << heard;
        }
    }
}

TEST_F(BusSenders, WhereASenderIsNamedItsSignalsAloneAreHeard) {
    const BusPeer owner(bus.address());
    const BusPeer other(bus.address());
    ASSERT_TRUE(owner.ownName(service));
    int heard = 0;
    session().addSignal(
        preferences, "changed", [&](const BusSignal&) { ++heard; }, service);
    int markers = 0;
    session().addSignal(preferences, "marker", [&](const BusSignal&) { ++markers; });
    ASSERT_TRUE(settled());

    other.emitSignal("/x", preferences, "changed");
    other.emitSignal("/x", preferences, "marker");
    ASSERT_TRUE(runUntil([&] { return markers == 1; }));
    EXPECT_EQ(0, heard);

    owner.emitSignal("/x", preferences, "changed");
    EXPECT_TRUE(runUntil([&] { return heard == 1; }));
}

TEST_F(BusSenders, ASignalThatIsAddressedToUsAloneIsNotHeard) {
    int heard = 0;
    session().addSignal(preferences, "changed", [&](const BusSignal&) { ++heard; });
    bool named = false;
    session().addName(name, [&](auto) { named = true; });
    ASSERT_TRUE(runUntil([&] { return named; }));
    const BusPeer peer(bus.address());

    peer.emitSignal("/x", preferences, "changed", name);
    peer.emitSignal("/x", preferences, "changed");

    ASSERT_TRUE(runUntil([&] { return heard >= 1; }));
    EXPECT_EQ(1, heard);
}

TEST(BusOfManyUsers, AnotherUsersMessagesAreRefused) {
    if (::geteuid() != 0) GTEST_SKIP() << "only root can be another user";
    const PrivateBus bus(PrivateBus::Start::Now, "DBUS_SESSION_BUS_ADDRESS", PrivateBus::Admits::EveryUser);
    seat::PollLoop loop;
    const testing_support::LoggedLines log;
    int calls = 0;
    auto& session = SessionBus::shared();
    session.addMethods("/", name, [&](const BusCall&) {
        ++calls;
        return SessionBus::CallResult::Done;
    });
    bool named = false;
    session.addName(name, [&](auto) { named = true; });
    ASSERT_TRUE(loop.runUntil([&] { return named; }));
    const auto sendAs = [&](const std::string& user) {
        const std::string command = "setpriv --reuid=" + user + " --clear-groups dbus-send --bus='" + bus.address() +
                                    "' --print-reply --reply-timeout=20000 --dest=" + name + " / " + name +
                                    ".JVNDiscoveryUpdate >/dev/null 2>&1";
        std::atomic<bool> done = false;
        int status = -1;
        std::thread sender([&] {
            status = std::system(command.c_str());
            done = true;
            seat::queueOnMain([] {});
        });
        loop.runUntil([&] { return done.load(); }, 60);
        sender.join();
        return status;
    };

    EXPECT_NE(0, sendAs("65534"));
    EXPECT_EQ(0, calls);
    EXPECT_EQ(1u, log.count("it is another user's"));

    EXPECT_EQ(0, sendAs("0"));
    EXPECT_EQ(1, calls);
    session.close();
}

} // namespace
