#include "tests/support/RunLoop.h"

#include "kit/dispatch/main_queue.h"
#include "kit/dispatch/run_loop_sources.h"
#include "kit/seat.h"
#include "platform/foundation/time.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <stdexcept>

namespace testing_support {

// The main queue and timers; descriptors there are none.
struct RunLoop::State final : seat::RunLoopDriver {
    // Shared with the main queue's waker, which another thread may be in the middle of calling.
    struct Wake {
        std::mutex mutex;
        std::condition_variable changed;
        bool isWanted = false;
    };

    void watchReadable(seat::SourceToken, int) override { throw std::logic_error("no descriptors in memory"); }
    void unwatchReadable(seat::SourceToken) override {}
    void setNextDeadline(std::optional<double> next) override { deadline = next; }

    void runOnce(double longestWait) {
        double wait = longestWait;
        if (deadline && !seat::clockIsHeld())
            wait = std::clamp(*deadline - platform::CACurrentMediaTime(), 0.0, longestWait);
        {
            std::unique_lock lock(wake->mutex);
            wake->changed.wait_for(lock, std::chrono::duration<double>(wait), [this] { return wake->isWanted; });
            wake->isWanted = false;
        }
        seat::drainMainQueue();
        seat::fireDueTimers();
    }

    std::shared_ptr<Wake> wake = std::make_shared<Wake>();
    std::optional<double> deadline;
};

RunLoop::RunLoop() : m_state(std::make_unique<State>()) {
    seat::setRunLoopDriver(m_state.get());
    seat::setWakeMainQueue([wake = m_state->wake] {
        const std::lock_guard lock(wake->mutex);
        wake->isWanted = true;
        wake->changed.notify_all();
    });
}

RunLoop::~RunLoop() {
    seat::setWakeMainQueue(nullptr);
    seat::setRunLoopDriver(nullptr);
}

bool RunLoop::runUntil(const std::function<bool()>& done, double seconds) {
    using Clock = std::chrono::steady_clock;
    const auto end = Clock::now() + std::chrono::duration<double>(seconds);
    while (!done()) {
        const double left = std::chrono::duration<double>(end - Clock::now()).count();
        if (left <= 0) return false;
        m_state->runOnce(left);
    }
    return true;
}

void RunLoop::runReady() { m_state->runOnce(0); }

} // namespace testing_support
