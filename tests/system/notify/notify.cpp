#include "platform/notify.h"

#include "system/notify/NotifyListener.h"
#include "tests/support/BusPeer.h"
#include "tests/support/BusSession.h"
#include "tests/support/LoggedLines.h"

#include <chrono>
#include <future>
#include <gtest/gtest.h>
#include <thread>

namespace {

using seat::NotifyListener;
using testing_support::BusPeer;

constexpr auto changed = "com.quorrel.jvnprefs.changed";
constexpr auto failure = "com.quorrel.jvnfailure";
constexpr auto initbt = "com.quorrel.jvninitbt";

class Notify : public ::testing::Test, protected testing_support::BusSession {
protected:
    // Until the bus has everything that was asked of it so far.
    bool settled() {
        bool answered = false;
        seat::SessionBus::shared().addName("com.quorrel.test.settled", [&](auto) { answered = true; });
        const bool result = runUntil([&] { return answered; });
        seat::SessionBus::shared().removeName("com.quorrel.test.settled");
        return result;
    }

    testing_support::LoggedLines m_log;
};

TEST_F(Notify, OtherProgramsHearIt) {
    const BusPeer peer(bus.address());
    peer.listen("type='signal',interface='com.quorrel.jvnprefs'");

    EXPECT_EQ(NOTIFY_STATUS_OK, notify_post(changed));

    EXPECT_EQ("/com/quorrel/jvnprefs com.quorrel.jvnprefs.changed", whileRunning([&] { return peer.nextSignal(); }));
}

TEST_F(Notify, WhatIsPostedBeforeTheBusIsThereGoesOutInOrderOnceItIs) {
    const BusPeer peer(bus.address());
    peer.listen("type='signal'");

    for (const auto* const name : {initbt, changed, failure, changed}) notify_post(name);

    std::vector<std::string> heard;
    for (int i = 0; i < 4; ++i) heard.push_back(whileRunning([&] { return peer.nextSignal(); }));
    EXPECT_EQ((std::vector<std::string>{
                  "/com/quorrel com.quorrel.jvninitbt", "/com/quorrel/jvnprefs com.quorrel.jvnprefs.changed",
                  "/com/quorrel com.quorrel.jvnfailure", "/com/quorrel/jvnprefs com.quorrel.jvnprefs.changed"}),
              heard);
}

TEST_F(Notify, AListenerHereHearsOnceLaterAndInOrder) {
    std::vector<std::string> heard;
    const NotifyListener first(failure, [&] { heard.emplace_back("failure"); });
    const NotifyListener second(changed, [&] { heard.emplace_back("changed"); });
    ASSERT_TRUE(settled());

    notify_post(failure);
    notify_post(changed);
    notify_post(failure);
    EXPECT_TRUE(heard.empty());
    ASSERT_TRUE(settled());
    ASSERT_TRUE(settled()); // time for an echo of the bus to come back

    EXPECT_EQ((std::vector<std::string>{"failure", "changed", "failure"}), heard);
}

TEST_F(Notify, AListenerHearsOtherPrograms) {
    int heard = 0;
    const NotifyListener listener(changed, [&] { ++heard; });
    ASSERT_TRUE(settled());

    const BusPeer peer(bus.address());
    peer.emitSignal("/com/quorrel/jvnprefs", "com.quorrel.jvnprefs", "changed");

    EXPECT_TRUE(runUntil([&] { return heard == 1; }));
}

TEST_F(Notify, WithoutABusListenersHereStillHear) {
    bus.kill();
    int heard = 0;
    const NotifyListener listener(failure, [&] { ++heard; });

    EXPECT_EQ(NOTIFY_STATUS_OK, notify_post(failure));
    EXPECT_TRUE(runUntil([&] { return heard == 1; }));
    runFor(0.1);
    notify_post(failure);
    EXPECT_TRUE(runUntil([&] { return heard == 2; }));

    EXPECT_EQ(1u, m_log.all().size());
}

TEST_F(Notify, AListenerThatGoesAwayHearsNoMore) {
    int heard = 0;
    auto listener = std::make_unique<NotifyListener>(failure, [&] { ++heard; });
    notify_post(failure);
    listener.reset();
    ASSERT_TRUE(settled());

    EXPECT_EQ(0, heard);
}

TEST_F(Notify, AListenerMayRemoveItselfAndOthers) {
    std::vector<std::unique_ptr<NotifyListener>> listeners;
    int heard = 0;
    for (int i = 0; i < 3; ++i)
        listeners.push_back(std::make_unique<NotifyListener>(failure, [&] {
            ++heard;
            listeners.clear();
        }));

    notify_post(failure);
    ASSERT_TRUE(settled());

    EXPECT_EQ(1, heard);
}

TEST_F(Notify, AnyThreadMayPost) {
    std::size_t heard = 0;
    const NotifyListener listener(initbt, [&] { ++heard; });
    std::vector<std::jthread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([] {
            for (int j = 0; j < 50; ++j) notify_post(initbt);
        });

    EXPECT_TRUE(runUntil([&] { return heard == 200; }));
}

TEST_F(Notify, APostOnAnotherThreadHasReachedOtherProgramsWhenItReturns) {
    const BusPeer peer(bus.address());
    peer.listen("type='signal',interface='com.quorrel'");

    int inTime = 0;
    for (int i = 0; i < 200; ++i) {
        notify_post(failure);
        const auto heard = whileRunning([&] {
            const auto begun = std::chrono::steady_clock::now();
            notify_post(initbt);
            const bool isInTime = std::chrono::steady_clock::now() - begun < std::chrono::milliseconds(100);
            inTime += isInTime;
            // An answer of the bus comes behind all that it had by then: what was posted lies there, in order.
            if (isInTime) peer.nameHasOwner("com.quorrel.nobody");
            // It does not wait longer for a bus that others keep from its work.
            const auto wait = isInTime ? std::chrono::milliseconds(0) : std::chrono::milliseconds(20'000);
            auto first = peer.nextSignal(wait);
            return first + ", " + peer.nextSignal(wait);
        });
        ASSERT_EQ("/com/quorrel com.quorrel.jvnfailure, /com/quorrel com.quorrel.jvninitbt", heard);
    }
    EXPECT_GT(inTime, 0);
}

TEST_F(Notify, APostOnAnotherThreadWaitsForNoBusThatIsAwayOrSilentAndForNoBusyMainThread) {
    const auto post = [] {
        const auto start = std::chrono::steady_clock::now();
        notify_post(initbt);
        return std::chrono::steady_clock::now() - start < std::chrono::seconds(2);
    };
    EXPECT_TRUE(std::async(std::launch::async, post).get()) << "the main thread does not look";

    notify_post(changed);
    ASSERT_TRUE(connected());
    bus.stop();
    EXPECT_TRUE(whileRunning(post));
    bus.resume();
    bus.kill();
    EXPECT_TRUE(whileRunning(post));
}

TEST_F(Notify, ANameThatCannotBeSentFailsAndIsLogged) {
    EXPECT_EQ(NOTIFY_STATUS_FAILED, notify_post("plain"));
    EXPECT_EQ(NOTIFY_STATUS_FAILED, notify_post(nullptr));

    EXPECT_EQ(2u, m_log.count("not a name of three parts or more"));
}

TEST_F(Notify, PostingNeverWaitsForABusThatDoesNotRead) {
    notify_post(changed);
    ASSERT_TRUE(connected());
    bus.stop();

    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < 20'000; ++i) notify_post(changed);
    runUntil([] { return seat::mainQueueIsEmpty(); });

    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
    EXPECT_GE(m_log.count("does not take what is sent"), 1u);
    bus.resume();
}

} // namespace
