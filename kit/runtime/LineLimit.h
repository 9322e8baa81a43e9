#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

namespace seat {

// For lines that a peer can make us write as often as it likes: the first is written at once, those that follow are
// counted, and the first of them that comes a minute later is written with their number. One thread.
class LineLimit {
public:
    // nullopt: not now. Else what is to be put behind the line: nothing, or how many were left out before it.
    std::optional<std::string> pass(std::chrono::steady_clock::time_point now = std::chrono::steady_clock::now()) {
        if (m_written && now - *m_written < quiet) {
            ++m_leftOut;
            return std::nullopt;
        }
        m_written = now;
        const std::uint64_t leftOut = m_leftOut;
        m_leftOut = 0;
        return leftOut == 0 ? std::string() : " (and " + std::to_string(leftOut) + " like it before)";
    }

private:
    static constexpr std::chrono::seconds quiet{60};

    std::optional<std::chrono::steady_clock::time_point> m_written;
    std::uint64_t m_leftOut = 0;
};

} // namespace seat
