#pragma once

#include "kit/dispatch/main_queue.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <fcntl.h>
#include <memory>
#include <thread>
#include <unistd.h>

namespace testing_support {

// Milliseconds for which the main thread was ready to go on while other programs had the processors. 0 where the system
// does not tell.
inline double mainThreadHeldUpMilliseconds() {
    char path[64];
    char text[128] = {};
    std::snprintf(path, sizeof path, "/proc/self/task/%d/schedstat", ::getpid());
    const int file = ::open(path, O_RDONLY | O_CLOEXEC);
    if (file == -1) return 0;
    const auto length = ::read(file, text, sizeof text - 1);
    ::close(file);
    unsigned long long ran = 0;
    unsigned long long waited = 0;
    return length > 0 && std::sscanf(text, "%llu %llu", &ran, &waited) == 2 ? static_cast<double>(waited) * 1e-6 : 0;
}

// Knocks at the main queue every few milliseconds and measures how late the main thread answers; what a busy machine
// adds to that is not counted.
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
            const double heldUp = mainThreadHeldUpMilliseconds();
            seat::queueOnMain([asked = Clock::now(), heldUp, longest = m_longest, beats = m_beats] {
                const double passed = std::chrono::duration<double, std::milli>(Clock::now() - asked).count();
                const double late = passed - (mainThreadHeldUpMilliseconds() - heldUp);
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
