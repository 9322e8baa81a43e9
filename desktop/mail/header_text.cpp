#include "desktop/mail/header_text.h"

#include "kit/foundation/base64.h"
#include "kit/foundation/utf8.h"

#include <algorithm>
#include <cstdint>
#include <vector>

namespace seat {

namespace {

constexpr std::size_t longestLine = 76;
constexpr std::size_t longestWord = 45; // bytes before the encoding, which makes 60 of them and adds 12

bool isPlain(std::string_view text) {
    for (const char c : text)
        if (static_cast<std::uint8_t>(c) < 0x20 || static_cast<std::uint8_t>(c) > 0x7E) return false;
    // What looks like an encoded word would be read as one.
    return text.find("=?") == std::string_view::npos;
}

std::string withoutLineEnds(std::string_view text) {
    std::string line(text);
    for (char& c : line)
        if (static_cast<std::uint8_t>(c) < 0x20 || c == 0x7F) c = ' ';
    return line;
}

std::string trimmed(std::string_view text) {
    const auto first = text.find_first_not_of(' ');
    if (first == std::string_view::npos) return {};
    return std::string(text.substr(first, text.find_last_not_of(' ') + 1 - first));
}

// Each word holds whole characters.
std::string encodedWords(std::string_view text) {
    std::string words;
    while (!text.empty()) {
        std::size_t length = std::min(longestWord, text.size());
        while (length < text.size() && length > 1 && (static_cast<std::uint8_t>(text[length]) & 0xC0) == 0x80) --length;
        if (!words.empty()) words += "\r\n ";
        words += "=?utf-8?B?";
        words += encodeBase64(text.substr(0, length));
        words += "?=";
        text.remove_prefix(length);
    }
    return words;
}

// Breaks before a space, so that lines end within their bound where there is one to break at.
std::string folded(std::string_view text) {
    std::string lines;
    std::size_t onLine = 0;
    while (!text.empty()) {
        auto end = text.find(' ', 1);
        if (end == std::string_view::npos) end = text.size();
        const bool isSpace = text.substr(0, end).find_first_not_of(' ') == std::string_view::npos;
        if (onLine + end > longestLine && onLine > 0 && text[0] == ' ' && !isSpace) {
            lines += "\r\n";
            onLine = 0;
        }
        lines += text.substr(0, end);
        onLine += end;
        text.remove_prefix(end);
    }
    return lines;
}

// The comma-separated parts; commas in quotes or angle brackets separate nothing.
std::vector<std::string> mailboxes(std::string_view text) {
    std::vector<std::string> parts(1);
    bool isQuoted = false;
    bool isAddress = false;
    for (const char c : text) {
        if (c == '"') isQuoted = !isQuoted;
        if (!isQuoted && (c == '<' || c == '>')) isAddress = c == '<';
        if (c == ',' && !isQuoted && !isAddress)
            parts.emplace_back();
        else
            parts.back() += c;
    }
    return parts;
}

std::string mailbox(const std::string& text) {
    if (isPlain(text)) return text;
    const auto address = text.rfind('<');
    if (address == std::string::npos) return text; // an address by itself is nothing to encode
    std::string name = trimmed(std::string_view(text).substr(0, address));
    if (isPlain(name)) return text;
    if (name.size() > 1 && name.front() == '"' && name.back() == '"') name = name.substr(1, name.size() - 2);
    return encodedWords(name) + " " + text.substr(address);
}

} // namespace

std::string headerText(std::string_view text) {
    const std::string line = withoutLineEnds(text);
    return isPlain(line) ? folded(line) : encodedWords(isUTF8(line) ? line : std::string());
}

std::string headerRecipients(std::string_view recipients) {
    // Each on a line of its own, once they do not fit on one.
    const char* const separator = recipients.size() > longestLine - 10 ? ",\r\n " : ", ";
    std::string list;
    for (const auto& part : mailboxes(withoutLineEnds(recipients))) {
        const std::string one = trimmed(part);
        if (one.empty()) continue;
        if (!list.empty()) list += separator;
        list += mailbox(one);
    }
    return list;
}

} // namespace seat
