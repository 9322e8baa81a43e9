#include "system/run_loop/PollLoop.h"

#include "kit/dispatch/main_queue.h"
#include "kit/seat.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>
#include <vector>

class seat::PollLoop::Wake {
public:
    Wake() : m_descriptor(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}
    ~Wake() { ::close(m_descriptor); }
    Wake(const Wake&) = delete;
    Wake& operator=(const Wake&) = delete;

    int descriptor() const { return m_descriptor; }
    void signal() const { ::eventfd_write(m_descriptor, 1); }
    void clear() const {
        eventfd_t count = 0;
        ::eventfd_read(m_descriptor, &count);
    }

private:
    int m_descriptor;
};

namespace {

double realSeconds() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

} // namespace

seat::PollLoop::PollLoop() : m_wake(std::make_shared<Wake>()) {
    setRunLoopDriver(this);
    setWakeMainQueue([wake = m_wake] { wake->signal(); });
}

seat::PollLoop::~PollLoop() {
    setWakeMainQueue(nullptr);
    setRunLoopDriver(nullptr);
}

bool seat::PollLoop::runUntil(const std::function<bool()>& done, double seconds) {
    const double end = realSeconds() + seconds;
    while (!done()) {
        const double left = end - realSeconds();
        if (left <= 0) return false;
        runOnce(left);
    }
    return true;
}

void seat::PollLoop::runReady() { runOnce(0); }

void seat::PollLoop::runOnce(double longestWait) {
    std::vector<SourceToken> tokens;
    std::vector<pollfd> descriptors{{m_wake->descriptor(), POLLIN, 0}};
    for (const auto& [token, descriptor] : m_watched) {
        tokens.push_back(token);
        descriptors.push_back({descriptor, POLLIN, 0});
    }

    double wait = longestWait;
    // A held clock does not reach the deadline by waiting: whoever moves it fires the timers.
    if (m_deadline && !clockIsHeld()) wait = std::clamp(*m_deadline - platform::CACurrentMediaTime(), 0.0, longestWait);
    const timespec time{static_cast<time_t>(wait), std::lround((wait - std::floor(wait)) * 999'999'999)};
    if (::ppoll(descriptors.data(), descriptors.size(), &time, nullptr) > 0) {
        if (descriptors[0].revents) m_wake->clear();
        for (std::size_t i = 0; i < tokens.size(); ++i)
            if (descriptors[i + 1].revents) readableSourceFired(tokens[i]);
    }
    drainMainQueue();
    fireDueTimers();
}
