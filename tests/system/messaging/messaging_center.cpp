#include "platform/messaging_center.h"
#include "platform/runtime/method.h"

#include "tests/support/BusPeer.h"
#include "tests/support/BusSession.h"
#include "tests/support/Heartbeat.h"
#include "tests/support/LoggedLines.h"
#include "tests/system/messaging/receiver.h"

#include <chrono>
#include <dbus/dbus.h>
#include <gtest/gtest.h>
#include <thread>

NS_CLASS_IMPLEMENTATION(MessageReceiver, NSObject, method<&MessageReceiver::handle>("handle:userInfo:"))

namespace {

using testing_support::BusPeer;
using testing_support::integerDictionary;

constexpr auto update = "JVNDiscoveryUpdate";

class MessagingCenter : public ::testing::Test, protected testing_support::BusSession {
protected:
    void run() {
        m_center->runServerOnCurrentThread();
        rocketbootstrap_distributedmessagingcenter_apply(m_center);
        m_center->registerForMessageName_target_selector(update, m_receiver, "handle:userInfo:");
    }
    bool nameHasOwner(bool expected) {
        const BusPeer peer(bus.address());
        return runUntil([&] {
            seat::queueOnMain([] {});
            return peer.nameHasOwner(name) == expected;
        });
    }
    std::string report(int state) {
        return whileRunning([=, this] {
            return BusPeer(bus.address()).call(name, "/", name, update, integerDictionary("JVNDiscoveryState", state));
        });
    }

    testing_support::LoggedLines m_log;
    std::shared_ptr<CPDistributedMessagingCenter> m_center = CPDistributedMessagingCenter::centerNamed(name);
    std::shared_ptr<MessageReceiver> m_receiver = MessageReceiver::alloc();
};

TEST_F(MessagingCenter, TheSameNameIsTheSameCenterWhileItLives) {
    EXPECT_EQ(m_center, CPDistributedMessagingCenter::centerNamed(name));
    EXPECT_NE(m_center, CPDistributedMessagingCenter::centerNamed("com.quorrel.other"));

    std::weak_ptr<NSObject> former = m_center;
    m_center.reset();
    EXPECT_TRUE(former.expired());
    EXPECT_TRUE(CPDistributedMessagingCenter::centerNamed(name));
}

TEST_F(MessagingCenter, AMessageReachesItsTargetWithItsNameAndDictionary) {
    run();
    ASSERT_TRUE(nameHasOwner(true));

    EXPECT_EQ("", report(4));
    EXPECT_EQ("", report(0));

    EXPECT_EQ((std::vector<std::string>{"JVNDiscoveryUpdate 4", "JVNDiscoveryUpdate 0"}), m_receiver->received);
}

TEST_F(MessagingCenter, AMessageWithoutADictionaryArrivesWithNil) {
    run();
    ASSERT_TRUE(nameHasOwner(true));

    EXPECT_EQ("", whileRunning([&] { return BusPeer(bus.address()).call(name, "/", name, update); }));

    EXPECT_EQ((std::vector<std::string>{"JVNDiscoveryUpdate nothing"}), m_receiver->received);
}

TEST_F(MessagingCenter, MalformedAndUnknownMessagesAreDroppedWithALoggedReason) {
    run();
    ASSERT_TRUE(nameHasOwner(true));
    const auto text = [](DBusMessageIter& at) {
        const char* const value = "4";
        ::dbus_message_iter_append_basic(&at, DBUS_TYPE_STRING, static_cast<const void*>(&value));
    };

    EXPECT_EQ(DBUS_ERROR_INVALID_ARGS,
              whileRunning([&] { return BusPeer(bus.address()).call(name, "/", name, update, text); }));
    EXPECT_EQ(DBUS_ERROR_UNKNOWN_METHOD,
              whileRunning([&] { return BusPeer(bus.address()).call(name, "/", name, "Other"); }));
    EXPECT_EQ("", report(2));

    EXPECT_EQ((std::vector<std::string>{"JVNDiscoveryUpdate 2"}), m_receiver->received);
    EXPECT_EQ(1u, m_log.count("it carries no dictionary; dropped"));
    EXPECT_EQ(1u, m_log.count("message Other from"));
}

TEST_F(MessagingCenter, TheServerRunsOnlyBetweenRunAndStop) {
    EXPECT_TRUE(nameHasOwner(false));
    run();
    EXPECT_TRUE(nameHasOwner(true));
    m_center->stopServer();
    EXPECT_TRUE(nameHasOwner(false));
    EXPECT_EQ(DBUS_ERROR_SERVICE_UNKNOWN, report(4));

    run();
    ASSERT_TRUE(nameHasOwner(true));
    EXPECT_EQ("", report(0));
    EXPECT_EQ((std::vector<std::string>{"JVNDiscoveryUpdate 0"}), m_receiver->received);
}

TEST_F(MessagingCenter, StoppingDropsMessagesThatHaveArrivedButWereNotDelivered) {
    run();
    ASSERT_TRUE(nameHasOwner(true));
    const BusPeer peer(bus.address());
    for (int i = 0; i < 100; ++i) peer.send(name, "/", name, update);
    m_receiver->whenCalled = [this] { m_center->stopServer(); };
    peer.flush();

    ASSERT_TRUE(runUntil([&] { return !m_receiver->received.empty(); }));
    ASSERT_TRUE(nameHasOwner(false));

    EXPECT_EQ(1u, m_receiver->received.size());
}

TEST_F(MessagingCenter, TheEndOfTheCenterFreesItsName) {
    run();
    ASSERT_TRUE(nameHasOwner(true));

    m_center.reset();

    EXPECT_TRUE(nameHasOwner(false));
}

TEST_F(MessagingCenter, ATargetThatHasGoneGetsNothing) {
    run();
    ASSERT_TRUE(nameHasOwner(true));
    m_receiver.reset();

    EXPECT_EQ(DBUS_ERROR_UNKNOWN_METHOD, report(4));
}

TEST_F(MessagingCenter, AnUnregisteredMessageIsNotDelivered) {
    run();
    ASSERT_TRUE(nameHasOwner(true));
    m_center->unregisterForMessageName(update);
    m_center->unregisterForMessageName(update);

    EXPECT_EQ(DBUS_ERROR_UNKNOWN_METHOD, report(4));
    EXPECT_TRUE(m_receiver->received.empty());
}

TEST_F(MessagingCenter, TheNameIsBackWithinTwoSecondsOfTheBussReturn) {
    run();
    ASSERT_TRUE(nameHasOwner(true));
    bus.kill();
    ASSERT_TRUE(runUntil([] { return !seat::SessionBus::shared().isConnected(); }));

    bus.start();
    const auto back = std::chrono::steady_clock::now();
    ASSERT_TRUE(nameHasOwner(true));
    EXPECT_LT(std::chrono::steady_clock::now() - back,
              std::chrono::duration<double>(testing_support::busReturnSeconds));

    EXPECT_EQ("", report(2));
    EXPECT_EQ((std::vector<std::string>{"JVNDiscoveryUpdate 2"}), m_receiver->received);
}

TEST_F(MessagingCenter, ANameOfAnotherProgramIsLoggedAndComesWhenItIsFree) {
    auto other = std::make_unique<BusPeer>(bus.address());
    ASSERT_TRUE(other->ownName(name));
    run();
    ASSERT_TRUE(runUntil([&] { return m_log.count("another program has it") == 1; }));

    other.reset();

    EXPECT_TRUE(nameHasOwner(true));
    EXPECT_EQ("", report(4));
    EXPECT_EQ(1u, m_receiver->received.size());
}

TEST_F(MessagingCenter, AFloodOfMessagesLeavesTimeForTheMainThread) {
    run();
    ASSERT_TRUE(nameHasOwner(true));
    constexpr std::size_t count = 50'000;
    std::thread flood([this] {
        const BusPeer peer(bus.address());
        const auto arguments = integerDictionary("JVNDiscoveryState", 0);
        for (std::size_t i = 0; i < count; ++i) {
            peer.send(name, "/", name, update, arguments);
            if (i % 100 == 0) peer.flush();
        }
        peer.flush();
    });

    const testing_support::Heartbeat heartbeat;
    const auto begun = std::chrono::steady_clock::now();
    const bool all = runUntil([&] { return m_receiver->received.size() == count; }, 100);
    const std::chrono::duration<double, std::milli> passed = std::chrono::steady_clock::now() - begun;
    flood.join();

    EXPECT_TRUE(all) << m_receiver->received.size();
    EXPECT_GT(heartbeat.beats(), 10);
    // As much as all of the flood if it were taken at once, and a part of that on the slowest machine.
    EXPECT_LT(heartbeat.longestMilliseconds(), passed.count() / 3);
}

} // namespace
