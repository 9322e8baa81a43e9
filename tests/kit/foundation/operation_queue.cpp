#include "platform/foundation/NSOperationQueue.h"

#include "platform/dispatch.h"
#include "tests/support/RunLoop.h"

#include <gtest/gtest.h>
#include <mutex>
#include <semaphore>
#include <thread>

namespace {

// Waits for what a worker does, with an end in sight.
class Signal {
public:
    void set() { m_semaphore.release(); }
    bool wait() { return m_semaphore.try_acquire_for(std::chrono::seconds(10)); }

private:
    std::binary_semaphore m_semaphore{0};
};

std::shared_ptr<NSOperationQueue> makeQueue() { return NSOperationQueue::alloc()->init(); }

TEST(OperationQueue, RunsOperationsInOrderOffTheMainThread) {
    const auto queue = makeQueue();
    Signal done;
    std::string order;
    bool onMain = true;

    queue->addOperationWithBlock([&] { order += "a"; });
    queue->addOperationWithBlock([&] { order += "b"; });
    queue->addOperationWithBlock([&] {
        onMain = dispatch_is_main_thread();
        done.set();
    });

    ASSERT_TRUE(done.wait());
    EXPECT_EQ(order, "ab");
    EXPECT_FALSE(onMain);
}

TEST(OperationQueue, SuspendedQueueStartsNothingUntilItIsResumed) {
    const auto queue = makeQueue();
    Signal done;
    std::atomic<bool> ran = false;
    queue->setSuspended(true);
    queue->addOperationWithBlock([&] {
        ran = true;
        done.set();
    });
    // Whatever may run has its turn: a queue that is not suspended gets through meanwhile.
    const auto other = makeQueue();
    Signal otherDone;
    other->addOperationWithBlock([&] { otherDone.set(); });
    ASSERT_TRUE(otherDone.wait());
    EXPECT_FALSE(ran);

    queue->setSuspended(false);

    EXPECT_TRUE(done.wait());
}

TEST(OperationQueue, SuspendingHoldsBackWhatHasNotStarted) {
    const auto queue = makeQueue();
    Signal started, goOn, first, second;
    std::atomic<bool> secondRan = false;
    queue->addOperationWithBlock([&] {
        started.set();
        goOn.wait();
        first.set();
    });
    queue->addOperationWithBlock([&] {
        secondRan = true;
        second.set();
    });
    ASSERT_TRUE(started.wait());

    queue->setSuspended(true);
    goOn.set();
    ASSERT_TRUE(first.wait());
    EXPECT_FALSE(secondRan);

    queue->setSuspended(false);
    EXPECT_TRUE(second.wait());
}

TEST(OperationQueue, OperationIsReleasedOnTheWorkerBeforeTheNextOneRuns) {
    struct Held {
        explicit Held(std::thread::id* where) : releasedOn(where) {}
        ~Held() { *releasedOn = std::this_thread::get_id(); }
        std::thread::id* releasedOn;
    };
    const auto queue = makeQueue();
    Signal done;
    std::thread::id releasedOn, ranOn, seen;
    queue->setSuspended(true);
    queue->addOperationWithBlock(
        [&ranOn, held = std::make_shared<Held>(&releasedOn)] { ranOn = std::this_thread::get_id(); });
    queue->addOperationWithBlock([&] {
        seen = releasedOn;
        done.set();
    });

    queue->setSuspended(false);

    ASSERT_TRUE(done.wait());
    EXPECT_EQ(seen, ranOn);
    EXPECT_NE(seen, std::this_thread::get_id());
}

TEST(OperationQueue, ReleasingASuspendedQueueDropsWhatWaits) {
    auto queue = makeQueue();
    const auto held = std::make_shared<int>(1);
    queue->setSuspended(true);
    queue->addOperationWithBlock([held] {});
    EXPECT_EQ(held.use_count(), 2);

    queue.reset();

    EXPECT_EQ(held.use_count(), 1);
}

TEST(OperationQueue, ReleasedQueueStillRunsWhatMayRun) {
    auto queue = makeQueue();
    Signal started, goOn, done;
    queue->addOperationWithBlock([&] {
        started.set();
        goOn.wait();
    });
    queue->addOperationWithBlock([&] { done.set(); });
    ASSERT_TRUE(started.wait());

    queue.reset();
    goOn.set();

    EXPECT_TRUE(done.wait());
}

TEST(OperationQueue, OperationMayHoldTheLastReferenceToItsQueue) {
    auto queue = makeQueue();
    const std::weak_ptr<NSOperationQueue> weak = queue;
    queue->setSuspended(true);
    queue->addOperationWithBlock([queue] {});
    queue->setSuspended(false);
    queue.reset();

    for (int i = 0; i < 10'000 && !weak.expired(); ++i) std::this_thread::yield();
    testing_support::RunLoop loop;
    EXPECT_TRUE(loop.runUntil([&] {
        dispatch_async(dispatch_get_main_queue(), [] {});
        return weak.expired();
    }));
}

TEST(OperationQueue, ManyThreadsMayAddAndSuspend) {
    const auto queue = makeQueue();
    constexpr int each = 200;
    std::atomic<int> ran = 0;
    std::atomic<int> together = 0;
    std::atomic<bool> overlapped = false;
    Signal done;
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&] {
            for (int i = 0; i < each; ++i) {
                queue->addOperationWithBlock([&] {
                    if (++together > 1) overlapped = true;
                    --together;
                    if (++ran == 4 * each) done.set();
                });
                queue->setSuspended(i % 2 == 0);
            }
        });
    for (auto& thread : threads) thread.join();

    queue->setSuspended(false);

    EXPECT_TRUE(done.wait());
    EXPECT_FALSE(overlapped);
}

} // namespace
