#include "host/dispatch/main_queue.h"

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

    static MainQueue& shared() {
        static auto* const queue = new MainQueue;
        return *queue;
    }
};

void call(const std::shared_ptr<std::function<void()>>& wake) {
    if (wake && *wake) (*wake)();
}

} // namespace

void host::setWakeMainQueue(std::function<void()> wake) {
    auto& queue = MainQueue::shared();
    auto shared = std::make_shared<std::function<void()>>(std::move(wake));
    std::unique_lock lock(queue.mutex);
    queue.wake.swap(shared);
    const auto waiting = queue.blocks.empty() ? nullptr : queue.wake;
    lock.unlock();
    call(waiting);
}

void host::queueOnMain(std::function<void()> block) {
    auto& queue = MainQueue::shared();
    std::unique_lock lock(queue.mutex);
    const bool wasEmpty = queue.blocks.empty();
    queue.blocks.push_back(std::move(block));
    const auto wake = wasEmpty ? queue.wake : nullptr;
    lock.unlock();
    call(wake);
}

std::size_t host::drainMainQueue() {
    auto& queue = MainQueue::shared();
    std::size_t ran = 0;
    std::unique_lock lock(queue.mutex);
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
    const auto wake = queue.blocks.empty() ? nullptr : queue.wake;
    lock.unlock();
    call(wake);
    return ran;
}

bool host::mainQueueIsEmpty() {
    const std::lock_guard lock(MainQueue::shared().mutex);
    return MainQueue::shared().blocks.empty();
}
