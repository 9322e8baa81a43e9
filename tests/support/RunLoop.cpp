#include "tests/support/RunLoop.h"

#include "system/run_loop/PollLoop.h"

namespace testing_support {

struct RunLoop::State {
    seat::PollLoop loop;
};

RunLoop::RunLoop() : m_state(std::make_unique<State>()) {}
RunLoop::~RunLoop() = default;

bool RunLoop::runUntil(const std::function<bool()>& done, double seconds) {
    return m_state->loop.runUntil(done, seconds);
}
void RunLoop::runReady() { m_state->loop.runReady(); }

} // namespace testing_support
