#include "kit/dispatch/main_queue.h"

#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>

namespace {

// Never destroyed: workers may queue until the very end; what still waits then is dropped with the process.
struct MainQueue {
    std::mutex mutex;
    std::deque<std::function<void()>> blocks;
    std::uint64_t taken = 0; // how many blocks have ever left the front
    std::shared_ptr<std::function<void()>> wake;
    bool asked = false; // the run loop has been woken and has not drained since

    static MainQueue& shared() {
        static auto* const queue = new MainQueue;
        return *queue;
    }

    // Wakes the run loop if something waits and it does not know yet. The lock is given up: the waker may take others.
    void wakeIfNeeded(std::unique_lock<std::mutex>& lock) {
        if (blocks.empty() || asked || !wake) return;
        asked = true;
        const auto called = wake;
        lock.unlock();
        (*called)();
    }
};

} // namespace

void seat::setWakeMainQueue(std::function<void()> wake) {
    auto& queue = MainQueue::shared();
    auto replaced = wake ? std::make_shared<std::function<void()>>(std::move(wake)) : nullptr;
    std::unique_lock lock(queue.mutex);
    queue.wake.swap(replaced);
    queue.asked = false;
    queue.wakeIfNeeded(lock);
}

void seat::queueOnMain(std::function<void()> block) {
    auto& queue = MainQueue::shared();
    std::unique_lock lock(queue.mutex);
    queue.blocks.push_back(std::move(block));
    queue.wakeIfNeeded(lock);
}

std::size_t seat::drainMainQueue() {
    auto& queue = MainQueue::shared();
    std::size_t ran = 0;
    std::unique_lock lock(queue.mutex);
    queue.asked = false;
    // Blocks leave one by one: a drain within a block goes on where this one stands, so that the order holds.
    const std::uint64_t end = queue.taken + queue.blocks.size();
    while (queue.taken < end) {
        auto block = std::move(queue.blocks.front());
        queue.blocks.pop_front();
        ++queue.taken;
        ++ran;
        lock.unlock();
        if (block) block();
        block = nullptr; // what it holds dies before the next block runs
        lock.lock();
    }
    queue.wakeIfNeeded(lock);
    return ran;
}

bool seat::mainQueueIsEmpty() {
    const std::lock_guard lock(MainQueue::shared().mutex);
    return MainQueue::shared().blocks.empty();
}
