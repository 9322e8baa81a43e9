#include "host/dispatch/main_queue.h"

#include "platform/dispatch.h"

#include <atomic>
#include <gtest/gtest.h>
#include <thread>

namespace {

void queue(std::function<void()> block) { dispatch_async(dispatch_get_main_queue(), std::move(block)); }

TEST(MainQueue, RunsBlocksInOrderOnTheMainThread) {
    std::string order;
    std::thread([&] {
        queue([&] { order += dispatch_is_main_thread() ? "a" : "?"; });
        queue([&] { order += "b"; });
    }).join();
    queue([&] { order += "c"; });
    EXPECT_EQ(order, "");

    EXPECT_EQ(host::drainMainQueue(), 3u);

    EXPECT_EQ(order, "abc");
    EXPECT_TRUE(host::mainQueueIsEmpty());
}

TEST(MainQueue, BlockQueuedByABlockWaitsForTheNextDrain) {
    std::string order;
    queue([&] {
        order += "a";
        queue([&] { order += "c"; });
    });
    queue([&] { order += "b"; });

    EXPECT_EQ(host::drainMainQueue(), 2u);
    EXPECT_EQ(order, "ab");
    EXPECT_FALSE(host::mainQueueIsEmpty());

    EXPECT_EQ(host::drainMainQueue(), 1u);
    EXPECT_EQ(order, "abc");
    EXPECT_EQ(host::drainMainQueue(), 0u);
}

TEST(MainQueue, DrainWithinABlockKeepsTheOrder) {
    std::string order;
    queue([&] {
        order += "a";
        queue([&] { order += "d"; });
        host::drainMainQueue();
        order += "|";
    });
    queue([&] { order += "b"; });
    queue([&] { order += "c"; });

    host::drainMainQueue();

    EXPECT_EQ(order, "abcd|");
}

TEST(MainQueue, BlockIsReleasedBeforeTheNextRuns) {
    const auto held = std::make_shared<int>(1);
    long seen = 0;
    queue([held] {});
    queue([&] { seen = held.use_count(); });

    host::drainMainQueue();

    EXPECT_EQ(seen, 1);
}

TEST(MainQueue, WakesOncePerBatchAndAgainForWhatADrainLeavesBehind) {
    int wakes = 0;
    host::setWakeMainQueue([&] { ++wakes; });

    queue([] {});
    queue([] {});
    EXPECT_EQ(wakes, 1);
    queue([&] { queue([] {}); });
    host::drainMainQueue();
    EXPECT_EQ(wakes, 2);
    host::drainMainQueue();
    EXPECT_EQ(wakes, 2);

    host::setWakeMainQueue(nullptr);
}

TEST(MainQueue, WakerThatComesLateHearsOfWhatWaits) {
    int wakes = 0;
    queue([] {});

    host::setWakeMainQueue([&] { ++wakes; });

    EXPECT_EQ(wakes, 1);
    host::setWakeMainQueue(nullptr);
    host::drainMainQueue();
}

TEST(MainQueue, EmptyBlockAndAbsentQueueAreIgnored) {
    queue(nullptr);
    dispatch_async(nullptr, [] {});

    EXPECT_TRUE(host::mainQueueIsEmpty());
}

TEST(MainQueue, ManyThreadsMayQueueWhileItDrains) {
    std::atomic<int> woken = 0;
    int ran = 0;
    int lastSeen[4] = {-1, -1, -1, -1};
    bool inOrder = true;
    host::setWakeMainQueue([&] { ++woken; });
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&, t] {
            for (int i = 0; i < 500; ++i)
                queue([&, t, i] {
                    inOrder = inOrder && lastSeen[t] == i - 1;
                    lastSeen[t] = i;
                    ++ran;
                });
        });
    while (ran < 2000) host::drainMainQueue();
    for (auto& thread : threads) thread.join();

    EXPECT_TRUE(inOrder);
    EXPECT_GE(woken, 1);
    host::setWakeMainQueue(nullptr);
}

} // namespace
