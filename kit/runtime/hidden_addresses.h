#pragma once

#include <cstddef>
#include <cstring>
#include <span>
#include <string>

namespace seat {

// Makes "..:00:01" of each Bluetooth address as it is printed ("00:AA:01:01:00:01", with - or _ too) in a line for the
// log, which never has a whole one, whoever has put it into the text. Works in place and takes no memory; the text's
// new length comes back.
inline std::size_t hideAddresses(std::span<char> text) {
    constexpr std::size_t whole = 17;
    constexpr std::size_t shown = 5;
    const auto isDigit = [](char c) {
        return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
    };
    const auto isAddress = [&](std::size_t at) {
        if (at + whole > text.size() || (at > 0 && isDigit(text[at - 1]))) return false;
        const char mark = text[at + 2];
        if (mark != ':' && mark != '-' && mark != '_') return false;
        for (std::size_t i = 0; i < whole; ++i)
            if (i % 3 == 2 ? text[at + i] != mark : !isDigit(text[at + i])) return false;
        return at + whole == text.size() || !isDigit(text[at + whole]);
    };
    std::size_t length = 0;
    for (std::size_t at = 0; at < text.size();) {
        if (!isAddress(at)) {
            text[length++] = text[at++];
            continue;
        }
        const char mark = text[at + 2];
        text[length++] = '.';
        text[length++] = '.';
        text[length++] = mark;
        std::memmove(text.data() + length, text.data() + at + whole - shown, shown);
        length += shown;
        at += whole;
    }
    return length;
}

inline std::string withoutAddresses(std::string text) {
    text.resize(hideAddresses(text));
    return text;
}

} // namespace seat
