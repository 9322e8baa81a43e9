#pragma once

#include "kit/runtime/hidden_addresses.h"

#include <algorithm>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <span>
#include <string_view>

namespace seat {

// A text as it goes into a log: one line of less than a kilobyte, without control characters and without a whole
// Bluetooth address, whoever has put them into it. Takes no memory: it is also how one hears that there is none.
class LogLine {
public:
    // As printf. Empty when that fails.
    [[gnu::format(printf, 2, 0)]] LogLine(const char* format, std::va_list arguments) {
        const int wanted = std::vsnprintf(m_text, longest, format, arguments);
        if (wanted < 0) return;
        const std::span text(m_text, std::min(static_cast<std::size_t>(wanted), longest - 1));
        m_length = hideAddresses(text);
        for (char& c : text)
            if (static_cast<unsigned char>(c) < 0x20 || c == 0x7f) c = ' ';
    }

    // How often the same line was left out before; 0 adds nothing. Once.
    void addRepetitions(std::uint64_t count) {
        if (count == 0) return;
        const int length = std::snprintf(m_text + m_length, sizeof m_text - m_length, " (and %llu times before)",
                                         static_cast<unsigned long long>(count));
        m_length += static_cast<std::size_t>(length);
    }

    std::string_view text() const { return {m_text, m_length}; }

private:
    static constexpr std::size_t longest = 960;

    char m_text[longest + 64];
    std::size_t m_length = 0;
};

} // namespace seat
