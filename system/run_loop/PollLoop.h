#pragma once

#include "kit/dispatch/run_loop_sources.h"

#include <functional>
#include <map>
#include <memory>

namespace seat {

// A main run loop without a window: the main queue, readable descriptors and timers, by poll(2). For tests and for
// programs that show nothing. Main thread only, one at a time.
class PollLoop final : public RunLoopDriver {
public:
    PollLoop();
    ~PollLoop() override;
    PollLoop(const PollLoop&) = delete;
    PollLoop& operator=(const PollLoop&) = delete;

    // Runs until `done` holds, and says whether it did. Asks before the first wait and after each thing that happened;
    // gives up after `seconds` of real time, whatever the host clock says.
    bool runUntil(const std::function<bool()>& done, double seconds = 10);
    // Runs what is ready now, without waiting.
    void runReady();

    void watchReadable(SourceToken token, int descriptor) override { m_watched[token] = descriptor; }
    void unwatchReadable(SourceToken token) override { m_watched.erase(token); }
    void setNextDeadline(std::optional<double> deadline) override { m_deadline = deadline; }

private:
    class Wake;

    void runOnce(double longestWait);

    // Shared with the main queue's waker, which another thread may be in the middle of calling.
    std::shared_ptr<Wake> m_wake;
    std::map<SourceToken, int> m_watched;
    std::optional<double> m_deadline;
};

} // namespace seat
