#pragma once

#include "kit/runtime/log.h"

#include <mutex>
#include <string>
#include <vector>

namespace testing_support {

// Keeps what is logged while it lives, instead of printing it.
class LoggedLines {
public:
    LoggedLines() {
        seat::setLogSink([this](std::string_view line) {
            const std::lock_guard lock(m_mutex);
            m_lines.emplace_back(line);
        });
    }
    ~LoggedLines() { seat::setLogSink({}); }
    LoggedLines(const LoggedLines&) = delete;
    LoggedLines& operator=(const LoggedLines&) = delete;

    std::vector<std::string> all() const {
        const std::lock_guard lock(m_mutex);
        return m_lines;
    }
    // How many lines hold the text.
    std::size_t count(const std::string& text) const {
        std::size_t found = 0;
        for (const auto& line : all()) found += line.find(text) != std::string::npos;
        return found;
    }

private:
    mutable std::mutex m_mutex;
    std::vector<std::string> m_lines;
};

} // namespace testing_support
