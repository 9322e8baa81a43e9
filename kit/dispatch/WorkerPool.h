#pragma once

// The threads behind the global queues and the operation queues.

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace seat {

// Workers are made when a block finds none idle, up to `most`; beyond that blocks wait for one. An idle worker sleeps
// until there is something for it. Signals are handled on other threads, so that no wait of a block is interrupted.
class WorkerPool {
public:
    static constexpr std::size_t most = 64;

    // Never destroyed.
    static WorkerPool& shared();

    // After shutDown() the block is dropped, unrun.
    void run(std::function<void()> block);

    // Drops the blocks that have not started, ends the idle workers and waits at most `grace` for the busy ones. True
    // when no worker is left.
    bool shutDown(std::chrono::milliseconds grace);

    std::size_t workerCount() const;

private:
    struct Worker {
        std::thread thread;
        bool ended = false; // guarded by m_mutex: the thread touches nothing of the pool any more
    };

    void startWorker();
    void work(Worker& worker);

    mutable std::mutex m_mutex;
    std::condition_variable m_changed; // a block came, or the pool is shutting down
    std::condition_variable m_ended;
    std::deque<std::function<void()>> m_blocks;
    std::vector<std::unique_ptr<Worker>> m_workers;
    std::size_t m_idle = 0;
    bool m_shutDown = false;
};

} // namespace seat
