#include "kit/dispatch/WorkerPool.h"
#include "platform/dispatch.h"

#include <atomic>
#include <csignal>
#include <gtest/gtest.h>
#include <semaphore>
#include <thread>

namespace {

using namespace std::chrono_literals;

dispatch_queue_t global() { return dispatch_get_global_queue(DISPATCH_QUEUE_PRIORITY_DEFAULT, 0); }

TEST(GlobalQueue, RunsBlocksOffTheMainThread) {
    std::binary_semaphore done{0};
    bool onMain = true;

    dispatch_async(global(), [&] {
        onMain = dispatch_is_main_thread();
        done.release();
    });

    ASSERT_TRUE(done.try_acquire_for(10s));
    EXPECT_FALSE(onMain);
    EXPECT_TRUE(dispatch_is_main_thread());
}

TEST(GlobalQueue, WaitingBlocksHoldNothingUp) {
    constexpr int waiters = 20;
    std::counting_semaphore<> release{0}, finished{0};
    for (int i = 0; i < waiters; ++i)
        dispatch_async(global(), [&] {
            release.acquire();
            finished.release();
        });

    std::binary_semaphore done{0};
    dispatch_async(global(), [&] { done.release(); });
    EXPECT_TRUE(done.try_acquire_for(10s));

    release.release(waiters);
    for (int i = 0; i < waiters; ++i) ASSERT_TRUE(finished.try_acquire_for(10s));
}

TEST(GlobalQueue, IdleWorkersAreUsedAgain) {
    seat::WorkerPool pool;
    std::binary_semaphore done{0};
    for (int i = 0; i < 200; ++i) {
        pool.run([&] { done.release(); });
        ASSERT_TRUE(done.try_acquire_for(10s));
    }

    // A worker may not have lain down yet when the next block comes, but two hundred never run beside each other.
    EXPECT_LE(pool.workerCount(), 4u);
    EXPECT_TRUE(pool.shutDown(10s));
}

TEST(GlobalQueue, WorkersAreBounded) {
    seat::WorkerPool pool;
    constexpr std::size_t blocks = 2 * seat::WorkerPool::most;
    std::counting_semaphore<> release{0}, finished{0};
    for (std::size_t i = 0; i < blocks; ++i)
        pool.run([&] {
            release.acquire();
            finished.release();
        });
    EXPECT_EQ(pool.workerCount(), seat::WorkerPool::most);

    release.release(blocks);
    for (std::size_t i = 0; i < blocks; ++i) ASSERT_TRUE(finished.try_acquire_for(10s));
    EXPECT_TRUE(pool.shutDown(10s));
}

TEST(GlobalQueue, BlockIsReleasedOnItsWorker) {
    struct Held {
        ~Held() { *releasedOn = std::this_thread::get_id(), done->release(); }
        std::thread::id* releasedOn;
        std::binary_semaphore* done;
    };
    std::binary_semaphore done{0};
    std::thread::id ranOn, releasedOn;
    auto held = std::make_shared<Held>(&releasedOn, &done);

    dispatch_async(global(), [&ranOn, held = std::move(held)] { ranOn = std::this_thread::get_id(); });

    ASSERT_TRUE(done.try_acquire_for(10s));
    EXPECT_EQ(releasedOn, ranOn);
}

TEST(GlobalQueue, WorkersTakeNoSignals) {
    std::binary_semaphore done{0};
    bool interruptBlocked = false, faultBlocked = true;

    dispatch_async(global(), [&] {
        sigset_t blocked;
        pthread_sigmask(SIG_SETMASK, nullptr, &blocked);
        interruptBlocked = sigismember(&blocked, SIGINT) && sigismember(&blocked, SIGCHLD);
        faultBlocked = sigismember(&blocked, SIGSEGV);
        done.release();
    });

    ASSERT_TRUE(done.try_acquire_for(10s));
    EXPECT_TRUE(interruptBlocked);
    EXPECT_FALSE(faultBlocked);
}

TEST(GlobalQueue, ShutDownPoolDropsBlocksUnrun) {
    seat::WorkerPool pool;
    std::atomic<bool> ran = false;
    const auto held = std::make_shared<int>(1);
    ASSERT_TRUE(pool.shutDown(10s));

    pool.run([&ran, held] { ran = true; });

    EXPECT_EQ(held.use_count(), 1);
    EXPECT_FALSE(ran);
    EXPECT_TRUE(pool.shutDown(0s));
}

TEST(GlobalQueue, ShutdownWaitsForRunningBlocksAndDropsTheOthers) {
    seat::WorkerPool pool;
    std::counting_semaphore<> started{0}, goOn{0};
    std::atomic<int> ran = 0;
    for (std::size_t i = 0; i < seat::WorkerPool::most; ++i)
        pool.run([&] {
            started.release();
            goOn.acquire();
            ++ran;
        });
    for (std::size_t i = 0; i < seat::WorkerPool::most; ++i) ASSERT_TRUE(started.try_acquire_for(10s));
    pool.run([&] { ran = -1000; });

    EXPECT_FALSE(pool.shutDown(0s));
    goOn.release(seat::WorkerPool::most);
    EXPECT_TRUE(pool.shutDown(10s));

    EXPECT_EQ(ran, static_cast<int>(seat::WorkerPool::most));
}

} // namespace
