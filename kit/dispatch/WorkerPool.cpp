#include "kit/dispatch/WorkerPool.h"

#include "kit/dispatch/shutdown.h"
#include "platform/log.h"

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <system_error>

namespace {

// Blocks every signal that is not the thread's own fault, for the time in which a thread is made: it inherits that.
class QuietThreadStart {
public:
    QuietThreadStart() {
        sigset_t quiet;
        sigfillset(&quiet);
        for (const int fault : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT, SIGTRAP, SIGSYS}) sigdelset(&quiet, fault);
        pthread_sigmask(SIG_SETMASK, &quiet, &m_before);
    }
    ~QuietThreadStart() { pthread_sigmask(SIG_SETMASK, &m_before, nullptr); }
    QuietThreadStart(const QuietThreadStart&) = delete;
    QuietThreadStart& operator=(const QuietThreadStart&) = delete;

private:
    sigset_t m_before{};
};

} // namespace

seat::WorkerPool& seat::WorkerPool::shared() {
    static auto* const pool = [] {
        // Nothing runs once main() has returned, even in a program that does not end through finishProcess() itself.
        ::on_exit([](int code, void*) { finishProcess(code); }, nullptr);
        return new WorkerPool;
    }();
    return *pool;
}

void seat::WorkerPool::run(std::function<void()> block) {
    const std::lock_guard lock(m_mutex);
    if (m_shutDown || !block) return;
    m_blocks.push_back(std::move(block));
    // A waiting block may hold its worker for seconds, so an idle one counts only when nothing else waits for it.
    if (m_blocks.size() > m_idle && m_workers.size() < most) startWorker();
    m_changed.notify_one();
}

void seat::WorkerPool::startWorker() {
    const QuietThreadStart quiet;
    auto worker = std::make_unique<Worker>();
    try {
        worker->thread = std::thread([this, made = worker.get()] { work(*made); });
    } catch (const std::system_error& error) {
        NSLog("dispatch: no thread for a block: %s", error.what());
        return;
    }
    m_workers.push_back(std::move(worker));
}

void seat::WorkerPool::work(Worker& worker) {
    std::unique_lock lock(m_mutex);
    while (!m_shutDown) {
        if (m_blocks.empty()) {
            ++m_idle;
            m_changed.wait(lock);
            --m_idle;
            continue;
        }
        auto block = std::move(m_blocks.front());
        m_blocks.pop_front();
        lock.unlock();
        block();
        block = nullptr;
        lock.lock();
    }
    worker.ended = true;
    m_ended.notify_all();
}

bool seat::WorkerPool::shutDown(std::chrono::milliseconds grace) {
    std::deque<std::function<void()>> dropped;
    std::unique_lock lock(m_mutex);
    m_shutDown = true;
    dropped.swap(m_blocks);
    m_changed.notify_all();
    const auto allEnded = [this] {
        return std::all_of(m_workers.begin(), m_workers.end(), [](const auto& worker) { return worker->ended; });
    };
    m_ended.wait_for(lock, grace, allEnded);

    std::vector<std::unique_ptr<Worker>> ended;
    std::erase_if(m_workers, [&](auto& worker) {
        if (!worker->ended) return false;
        ended.push_back(std::move(worker));
        return true;
    });
    const bool noneLeft = m_workers.empty();
    lock.unlock();
    for (const auto& worker : ended) worker->thread.join();
    return noneLeft;
}

std::size_t seat::WorkerPool::workerCount() const {
    const std::lock_guard lock(m_mutex);
    return m_workers.size();
}
