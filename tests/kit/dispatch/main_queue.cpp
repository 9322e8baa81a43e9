#include "kit/dispatch/main_queue.h"

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

    EXPECT_EQ(seat::drainMainQueue(), 3u);

    EXPECT_EQ(order, "abc");
    EXPECT_TRUE(seat::mainQueueIsEmpty());
}

TEST(MainQueue, BlockQueuedByABlockWaitsForTheNextDrain) {
    std::string order;
    queue([&] {
        order += "a";
        queue([&] { order += "c"; });
    });
    queue([&] { order += "b"; });

    EXPECT_EQ(seat::drainMainQueue(), 2u);
    EXPECT_EQ(order, "ab");
    EXPECT_FALSE(seat::mainQueueIsEmpty());

    EXPECT_EQ(seat::drainMainQueue(), 1u);
    EXPECT_EQ(order, "abc");
    EXPECT_EQ(seat::drainMainQueue(), 0u);
}

TEST(MainQueue, DrainWithinABlockKeepsTheOrder) {
    std::string order;
    queue([&] {
        order += "a";
        queue([&] { order += "d"; });
        seat::drainMainQueue();
        order += "|";
    });
    queue([&] { order += "b"; });
    queue([&] { order += "c"; });

    seat::drainMainQueue();

    EXPECT_EQ(order, "abcd|");
}

TEST(MainQueue, BlockIsReleasedBeforeTheNextRuns) {
    const auto held = std::make_shared<int>(1);
    long seen = 0;
    queue([held] {});
    queue([&] { seen = held.use_count(); });

    seat::drainMainQueue();

    EXPECT_EQ(seen, 1);
}

TEST(MainQueue, WakesOncePerBatchAndAgainForWhatADrainLeavesBehind) {
    int wakes = 0;
    seat::setWakeMainQueue([&] { ++wakes; });

    queue([] {});
    queue([] {});
    EXPECT_EQ(wakes, 1);
    queue([&] { queue([] {}); });
    seat::drainMainQueue();
    EXPECT_EQ(wakes, 2);
    seat::drainMainQueue();
    EXPECT_EQ(wakes, 2);

    seat::setWakeMainQueue(nullptr);
}

TEST(MainQueue, WakerThatComesLateHearsOfWhatWaits) {
    int wakes = 0;
    queue([] {});

    seat::setWakeMainQueue([&] { ++wakes; });

    EXPECT_EQ(wakes, 1);
    seat::setWakeMainQueue(nullptr);
    seat::drainMainQueue();
}

TEST(MainQueue, EmptyBlockAndAbsentQueueAreIgnored) {
    queue(nullptr);
    dispatch_async(nullptr, [] {});

    EXPECT_TRUE(seat::mainQueueIsEmpty());
}

TEST(MainQueue, ManyThreadsMayQueueWhileItDrains) {
    std::atomic<int> woken = 0;
    int ran = 0;
    int lastSeen[4] = {-1, -1, -1, -1};
    bool inOrder = true;
    seat::setWakeMainQueue([&] { ++woken; });
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
    while (ran < 2000) seat::drainMainQueue();
    for (auto& thread : threads) thread.join();

    EXPECT_TRUE(inOrder);
    EXPECT_GE(woken, 1);
    seat::setWakeMainQueue(nullptr);
}

} // namespace
