#include "desktop/mail/message_text.h"

#include "desktop/mail/html_blocks.h"
#include "kit/foundation/base64.h"

#include <cctype>
#include <cstdint>
#include <string_view>

namespace seat {
namespace {

// Lines of 76 characters, as messages want them.
std::string base64Lines(std::string_view bytes) {
    constexpr std::size_t lineLength = 76;
    const std::string text = encodeBase64(bytes);
    std::string lines;
    for (std::size_t i = 0; i == 0 || i < text.size(); i += lineLength) lines += text.substr(i, lineLength) + "\r\n";
    return lines;
}

} // namespace

std::string mailDraft(const std::string& htmlBody) {
    return "X-Unsent: 1\r\n"
           "To: \r\n"
           "Subject: \r\n"
           "MIME-Version: 1.0\r\n"
           "Content-Type: text/html; charset=utf-8\r\n"
           "Content-Transfer-Encoding: base64\r\n"
           "\r\n" +
           base64Lines(htmlBody);
}

std::string plainMessage(const std::string& htmlBody) {
    std::string text;
    for (const auto& block : htmlBlocks(htmlBody)) {
        if (block.kind != HTMLBlock::Kind::ListItem && !text.empty()) text += "\r\n";
        if (!block.marker.empty()) text += block.marker + " ";
        for (const auto& run : block.runs) {
            text += run.text;
            if (!run.address.empty()) text += " <" + run.address + ">";
        }
        text += "\r\n";
    }
    return text;
}

std::string htmlOfText(const std::string& text) {
    std::string html;
    for (const char c : text) {
        if (c == '&')
            html += "&amp;";
        else if (c == '<')
            html += "&lt;";
        else if (c == '\n')
            html += "<br>";
        else
            html += c;
    }
    return html;
}

std::string mailAddressWithBody(const std::string& text) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string address = "mailto:?body=";
    for (const char c : text) {
        const auto byte = static_cast<std::uint8_t>(c);
        if (std::isalnum(byte) && byte < 0x80) {
            address += c;
        } else {
            address += '%';
            address += digits[byte >> 4];
            address += digits[byte & 15];
        }
    }
    return address;
}

} // namespace seat
