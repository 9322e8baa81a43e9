#pragma once

#include <functional>
#include <memory>

namespace testing_support {

// The main run loop, as the seat under test has it without a window. One at a time; main thread only.
class RunLoop {
public:
    RunLoop();
    ~RunLoop();
    RunLoop(const RunLoop&) = delete;
    RunLoop& operator=(const RunLoop&) = delete;

    // Runs until `done` holds, and says whether it did. Asks before the first wait and after each thing that happened;
    // gives up after `seconds` of real time, whatever the clock says.
    bool runUntil(const std::function<bool()>& done, double seconds = 10);
    // Runs what is ready now, without waiting.
    void runReady();

private:
    struct State;
    std::unique_ptr<State> m_state;
};

} // namespace testing_support
