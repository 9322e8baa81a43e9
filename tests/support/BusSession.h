#pragma once

#include "kit/dispatch/main_queue.h"
#include "system/bus/SessionBus.h"
#include "system/run_loop/PollLoop.h"
#include "tests/support/PrivateBus.h"

#include <atomic>
#include <future>
#include <type_traits>

namespace testing_support {

// In which what is wanted of a bus is there again after its return. An instrumented program on a busy computer may need
// longer: then it is enough that it comes back.
inline constexpr double busReturnSeconds = [] {
#if defined(__has_feature)
#if __has_feature(thread_sanitizer) || __has_feature(address_sanitizer)
    return 10.0;
#endif
#endif
    return 2.0;
}();

// A bus of the test's own, the main run loop, and the session bus as the host has it.
class BusSession {
public:
    ~BusSession() { seat::SessionBus::shared().close(); }

    bool runUntil(const std::function<bool()>& done, double seconds = 10) { return loop.runUntil(done, seconds); }
    void runFor(double seconds) {
        loop.runUntil([] { return false; }, seconds);
    }
    bool connected() {
        return runUntil([] { return seat::SessionBus::shared().isConnected(); });
    }
    // What another program does, on a thread of its own, while the main run loop runs.
    template <class Work> std::invoke_result_t<Work> whileRunning(Work work) {
        std::atomic<bool> done = false;
        auto result = std::async(std::launch::async, [&work, &done] {
            auto outcome = work();
            done = true;
            seat::queueOnMain([] {}); // the run loop looks up
            return outcome;
        });
        loop.runUntil([&done] { return done.load(); }, 60);
        return result.get();
    }

    PrivateBus bus;
    seat::PollLoop loop;
};

} // namespace testing_support
