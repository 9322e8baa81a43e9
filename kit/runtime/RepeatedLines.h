#pragma once

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string_view>

namespace seat {

// Which lines of a log are only counted: those that were written within the last minute. The count is said with the
// next writing, so that nobody fills a disk with one line and no timer runs for it. Knows the latest sixteen; one that
// is not among them any more is written as new. Takes no memory. One thread at a time.
class RepeatedLines {
public:
    using Time = std::chrono::steady_clock::time_point;

    // nullopt: to be counted. Else it is to be written, and how often it was left out before.
    std::optional<std::uint64_t> pass(std::string_view text, Time now = std::chrono::steady_clock::now()) {
        Line line{std::hash<std::string_view>()(text), now};
        const auto end = m_lines.begin() + m_count;
        auto place = std::find_if(m_lines.begin(), end, [&line](const Line& known) { return known.hash == line.hash; });
        std::optional<std::uint64_t> leftOut = 0;
        if (place != end) {
            leftOut = place->leftOut;
            if (now - place->written < quiet) {
                line = {place->hash, place->written, place->leftOut + 1};
                leftOut.reset();
            }
        } else if (m_count < m_lines.size()) {
            ++m_count;
        } else {
            place = m_lines.begin();
        }
        *place = line;
        std::rotate(place, place + 1, m_lines.begin() + m_count);
        return leftOut;
    }

private:
    struct Line {
        std::size_t hash = 0;
        Time written;
        std::uint64_t leftOut = 0; // since then
    };

    static constexpr std::chrono::seconds quiet{60};

    std::array<Line, 16> m_lines; // the longest unused first
    std::uint8_t m_count = 0;
};

} // namespace seat
