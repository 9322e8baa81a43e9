#include "kit/foundation/utf8.h"

#include <cstring>

namespace {

constexpr std::uint64_t highBits = 0x8080808080808080;

std::size_t asciiPrefix(std::string_view text) {
    std::size_t at = 0;
    for (std::uint64_t word = 0; at + sizeof word <= text.size(); at += sizeof word) {
        std::memcpy(&word, text.data() + at, sizeof word);
        if (word & highBits) break;
    }
    while (at < text.size() && !(text[at] & 0x80)) ++at;
    return at;
}

// The length of the sequence at the front of `text` and its code point; 0 when it is not well-formed.
struct Decoded {
    std::size_t length;
    std::uint32_t codePoint;
};
Decoded decode(std::string_view text) {
    const auto byte = [&](std::size_t i) { return static_cast<std::uint8_t>(text[i]); };
    const std::uint8_t first = byte(0);
    if (first < 0x80) return {1, first};
    const std::size_t length = first >= 0xf0 ? 4 : first >= 0xe0 ? 3 : 2;
    if (first < 0xc2 || first > 0xf4 || text.size() < length) return {0, 0};
    std::uint32_t codePoint = first & (0x7fu >> length);
    for (std::size_t i = 1; i < length; ++i) {
        if ((byte(i) & 0xc0) != 0x80) return {0, 0};
        codePoint = codePoint << 6 | (byte(i) & 0x3fu);
    }
    constexpr std::uint32_t least[] = {0, 0, 0x80, 0x800, 0x10000};
    const bool isSurrogate = codePoint >= 0xd800 && codePoint < 0xe000;
    if (codePoint < least[length] || codePoint > 0x10ffff || isSurrogate) return {0, 0};
    return {length, codePoint};
}

} // namespace

void seat::appendUTF8(std::string& text, std::uint32_t c) {
    const auto tail = [&](unsigned shift) { text += static_cast<char>(0x80 | (c >> shift & 0x3f)); };
    if (c < 0x80) {
        text += static_cast<char>(c);
    } else if (c < 0x800) {
        text += static_cast<char>(0xc0 | c >> 6);
        tail(0);
    } else if (c < 0x10000) {
        text += static_cast<char>(0xe0 | c >> 12);
        tail(6);
        tail(0);
    } else {
        text += static_cast<char>(0xf0 | c >> 18);
        tail(12);
        tail(6);
        tail(0);
    }
}

bool seat::isASCII(std::string_view text) { return asciiPrefix(text) == text.size(); }

bool seat::isUTF8(std::string_view text) {
    for (;;) {
        text.remove_prefix(asciiPrefix(text));
        if (text.empty()) return true;
        const std::size_t length = decode(text).length;
        if (length == 0) return false;
        text.remove_prefix(length);
    }
}

std::size_t seat::utf16Length(std::string_view text) {
    std::size_t units = 0;
    for (const char c : text) {
        const auto byte = static_cast<std::uint8_t>(c);
        units += (byte & 0xc0) != 0x80; // what begins a code point
        units += byte >= 0xf0;          // takes a pair
    }
    return units;
}

void seat::writeUTF16BigEndian(std::uint8_t* bytes, std::string_view text) {
    const auto append = [&](std::uint32_t unit) {
        *bytes++ = static_cast<std::uint8_t>(unit >> 8);
        *bytes++ = static_cast<std::uint8_t>(unit);
    };
    while (!text.empty()) {
        const auto [length, codePoint] = decode(text);
        if (length == 0) return;
        if (codePoint < 0x10000) {
            append(codePoint);
        } else {
            append(0xd800 + ((codePoint - 0x10000) >> 10));
            append(0xdc00 + (codePoint & 0x3ff));
        }
        text.remove_prefix(length);
    }
}

bool seat::isUTF16BigEndian(std::span<const std::uint8_t> bytes) {
    bool afterHigh = false;
    for (std::size_t at = 0; at + 1 < bytes.size(); at += 2) {
        const bool isLow = (bytes[at] & 0xfc) == 0xdc;
        if (isLow != afterHigh) return false;
        afterHigh = (bytes[at] & 0xfc) == 0xd8;
    }
    return !afterHigh && bytes.size() % 2 == 0;
}

std::string seat::utf8FromUTF16BigEndian(std::span<const std::uint8_t> bytes) {
    const auto unit = [&](std::size_t at) { return static_cast<std::uint32_t>(bytes[at] << 8 | bytes[at + 1]); };
    std::string text;
    text.reserve(bytes.size());
    for (std::size_t at = 0; at + 1 < bytes.size(); at += 2) {
        std::uint32_t c = unit(at);
        if (c >= 0xd800 && c < 0xdc00 && at + 3 < bytes.size()) {
            at += 2;
            c = 0x10000 + ((c - 0xd800) << 10) + (unit(at) - 0xdc00);
        }
        appendUTF8(text, c);
    }
    return text;
}
