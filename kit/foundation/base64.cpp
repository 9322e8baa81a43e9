#include "kit/foundation/base64.h"

#include <algorithm>
#include <array>

namespace {

constexpr std::uint8_t space = 64, padding = 65, invalid = 66;

// What each character stands for: six bits, or one of the above.
constexpr auto meanings = [] {
    constexpr std::string_view digits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::array<std::uint8_t, 256> all{};
    for (auto& meaning : all) meaning = invalid;
    for (std::size_t i = 0; i < digits.size(); ++i)
        all[static_cast<std::uint8_t>(digits[i])] = static_cast<std::uint8_t>(i);
    for (const char c : {' ', '\t', '\n', '\r'}) all[static_cast<std::uint8_t>(c)] = space;
    all['='] = padding;
    return all;
}();

} // namespace

std::optional<std::vector<std::uint8_t>> seat::decodeBase64(std::string_view text) {
    if (!isBase64(text)) return std::nullopt;
    std::vector<std::uint8_t> bytes;
    bytes.reserve(text.size() / 4 * 3 + 3);
    std::uint32_t bits = 0;
    unsigned count = 0; // bits that wait, always below 8 between two characters
    for (const char c : text) {
        const std::uint8_t meaning = meanings[static_cast<std::uint8_t>(c)];
        if (meaning >= space) continue;
        bits = bits << 6 | meaning;
        count += 6;
        if (count < 8) continue;
        count -= 8;
        bytes.push_back(static_cast<std::uint8_t>(bits >> count));
        bits &= (1u << count) - 1;
    }
    return bytes;
}

std::string seat::encodeBase64(std::string_view bytes) {
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

bool seat::isBase64(std::string_view text) {
    std::size_t spaces = 0;
    std::size_t pads = 0;
    bool hasInvalid = false;
    // Without a branch and in counts of a byte, so that many characters are looked at in one go.
    constexpr std::size_t most = 128;
    for (std::string_view rest = text; !rest.empty(); rest.remove_prefix(std::min(rest.size(), most))) {
        std::uint8_t spacesHere = 0;
        std::uint8_t padsHere = 0;
        std::uint8_t invalidHere = 0;
        for (const char signedC : rest.substr(0, most)) {
            const auto c = static_cast<std::uint8_t>(signedC);
            const auto within = [c](std::uint8_t first, std::uint8_t length) {
                return static_cast<std::uint8_t>(static_cast<std::uint8_t>(c - first) < length);
            };
            const std::uint8_t isDigit =
                within('A', 26) | within('a', 26) | within('0', 10) | within('+', 1) | within('/', 1);
            const std::uint8_t isSpace = within(' ', 1) | within('\t', 2) | within('\r', 1);
            const std::uint8_t isPad = within('=', 1);
            spacesHere = static_cast<std::uint8_t>(spacesHere + isSpace);
            padsHere = static_cast<std::uint8_t>(padsHere + isPad);
            invalidHere = static_cast<std::uint8_t>(invalidHere | (1 ^ (isDigit | isSpace | isPad)));
        }
        spaces += spacesHere;
        pads += padsHere;
        hasInvalid |= invalidHere != 0;
    }
    if (hasInvalid || pads > 2 || (text.size() - spaces) % 4 != 0) return false;
    // The padding is all at the end, and what is before it has no bits that stand for no byte.
    std::uint8_t lastBits = 0;
    for (std::size_t at = text.size(); at-- > 0;) {
        const std::uint8_t meaning = meanings[static_cast<std::uint8_t>(text[at])];
        if (meaning == space) continue;
        if (meaning != padding) return pads == 0 && (meaning & lastBits) == 0;
        --pads;
        lastBits = static_cast<std::uint8_t>(lastBits << 2 | 3);
    }
    return pads == 0;
}
