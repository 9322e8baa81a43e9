#pragma once

#include "kit/runtime/log.h"

#include <mutex>
#include <string>
#include <vector>

namespace testing_support {

// Keeps what is logged while it lives, from any thread.
class CapturedLog {
public:
    CapturedLog() {
        seat::setLogSink([this](std::string_view line) {
            const std::lock_guard lock(m_mutex);
            m_lines.emplace_back(line);
        });
    }
    ~CapturedLog() { seat::setLogSink(nullptr); }
    CapturedLog(const CapturedLog&) = delete;
    CapturedLog& operator=(const CapturedLog&) = delete;

    std::vector<std::string> lines() const {
        const std::lock_guard lock(m_mutex);
        return m_lines;
    }

private:
    mutable std::mutex m_mutex;
    std::vector<std::string> m_lines;
};

} // namespace testing_support
