#include "host/foundation/base64.h"

#include <algorithm>

namespace {

int sixBits(char c) {
    if (c >= 'A' && c <= 'Z') return c - 'A';
    if (c >= 'a' && c <= 'z') return c - 'a' + 26;
    if (c >= '0' && c <= '9') return c - '0' + 52;
    if (c == '+') return 62;
    return c == '/' ? 63 : -1;
}

bool isSpace(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

} // namespace

std::optional<std::vector<std::uint8_t>> host::decodeBase64(std::string_view text) {
    std::vector<std::uint8_t> bytes;
    bytes.reserve(text.size() / 4 * 3 + 3);
    std::uint32_t bits = 0;
    unsigned count = 0; // bits that wait, always below 8 between two characters
    unsigned characters = 0;
    unsigned padding = 0;
    for (const char c : text) {
        if (isSpace(c)) continue;
        ++characters;
        if (c == '=') {
            ++padding;
            continue;
        }
        const int value = sixBits(c);
        if (value < 0 || padding > 0) return std::nullopt;
        bits = bits << 6 | static_cast<std::uint32_t>(value);
        count += 6;
        if (count >= 8) {
            count -= 8;
            bytes.push_back(static_cast<std::uint8_t>(bits >> count));
            bits &= (1u << count) - 1;
        }
    }
    // Groups of four: what is left over of the last byte says how much padding fills the group; six bits are no byte.
    if (characters % 4 != 0 || padding != count / 2 || count == 6 || bits != 0) return std::nullopt;
    return bytes;
}

std::string host::encodeBase64(std::string_view bytes) {
    static constexpr char digits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        const std::size_t count = std::min<std::size_t>(3, bytes.size() - i);
        std::uint32_t group = 0;
        for (std::size_t k = 0; k < 3; ++k)
            group = (group << 8) | (k < count ? static_cast<std::uint8_t>(bytes[i + k]) : 0u);
        for (std::size_t k = 0; k < 4; ++k) text += k <= count ? digits[(group >> (18 - 6 * k)) & 63] : '=';
    }
    return text;
}
