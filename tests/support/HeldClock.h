#pragma once

#include "services/common/EventLoop.h"

#include <algorithm>

namespace testing_support {

// A service's clock, on which time passes only by advance().
class HeldClock final : public services::Clock {
public:
    services::Moment now() const override { return m_now; }
    bool runsByItself() const override { return false; }

    // Timers that come due fire on the way, each at its own time, earliest first.
    void advance(services::EventLoop& loop, std::chrono::microseconds time) {
        const auto end = m_now + time;
        for (auto next = loop.nextTimer(); next && *next <= end; next = loop.nextTimer()) {
            m_now = std::max(m_now, *next);
            loop.fireDueTimers();
        }
        m_now = end;
    }

private:
    services::Moment m_now{1'000'000'000};
};

} // namespace testing_support
