#include "platform/foundation/NSOperationQueue.h"

#include "platform/dispatch.h"

#include <deque>
#include <mutex>

NS_CLASS_IMPLEMENTATION(NSOperationQueue, NSObject)

// Shared with the worker: the last reference to the queue may go while an operation runs, in the operation itself too.
struct NSOperationQueue::State : std::enable_shared_from_this<State> {
    std::mutex mutex;
    std::deque<std::function<void()>> operations;
    bool suspended = false;
    bool hasWorker = false;

    // With the mutex held.
    void startWorkerIfNeeded() {
        if (suspended || hasWorker || operations.empty()) return;
        hasWorker = true;
        dispatch_async(dispatch_get_global_queue(DISPATCH_QUEUE_PRIORITY_DEFAULT, 0),
                       [state = shared_from_this()] { state->work(); });
    }

    void work() {
        std::unique_lock lock(mutex);
        while (!suspended && !operations.empty()) {
            auto operation = std::move(operations.front());
            operations.pop_front();
            lock.unlock();
            operation();
            operation = nullptr;
            lock.lock();
        }
        hasWorker = false;
    }
};

NSOperationQueue::NSOperationQueue() : m_state(std::make_shared<State>()) {}

NSOperationQueue::~NSOperationQueue() {
    std::deque<std::function<void()>> dropped; // dies outside the lock
    const std::lock_guard lock(m_state->mutex);
    if (m_state->suspended) dropped.swap(m_state->operations);
}

std::shared_ptr<NSOperationQueue> NSOperationQueue::init() { return NSObject::init() ? self(this) : nullptr; }

void NSOperationQueue::setSuspended(bool suspended) {
    const std::lock_guard lock(m_state->mutex);
    m_state->suspended = suspended;
    m_state->startWorkerIfNeeded();
}

void NSOperationQueue::addOperationWithBlock(std::function<void()> block) {
    if (!block) return;
    const std::lock_guard lock(m_state->mutex);
    m_state->operations.push_back(std::move(block));
    m_state->startWorkerIfNeeded();
}
