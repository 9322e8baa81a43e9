#pragma once

#include "host/dispatch/main_queue.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <memory>
#include <thread>

namespace testing_support {

// Knocks at the main queue every few milliseconds and measures how late the main thread answers.
class Heartbeat {
public:
    Heartbeat() : m_thread([this] { beat(); }) {}
    ~Heartbeat() {
        m_stop = true;
        m_thread.join();
    }
    Heartbeat(const Heartbeat&) = delete;
    Heartbeat& operator=(const Heartbeat&) = delete;

    double longestMilliseconds() const { return *m_longest; }
    int beats() const { return *m_beats; }

private:
    using Clock = std::chrono::steady_clock;

    void beat() {
        while (!m_stop) {
            host::queueOnMain([asked = Clock::now(), longest = m_longest, beats = m_beats] {
                const double late = std::chrono::duration<double, std::milli>(Clock::now() - asked).count();
                *longest = std::max(longest->load(), late);
                ++*beats;
            });
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
    }

    std::shared_ptr<std::atomic<double>> m_longest = std::make_shared<std::atomic<double>>(0);
    std::shared_ptr<std::atomic<int>> m_beats = std::make_shared<std::atomic<int>>(0);
    std::atomic<bool> m_stop = false;
    std::thread m_thread;
};

} // namespace testing_support
