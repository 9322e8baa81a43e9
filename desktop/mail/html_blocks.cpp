#include "desktop/mail/html_blocks.h"

#include <cctype>
#include <charconv>
#include <cstdint>
#include <utility>

namespace seat {
namespace {

bool isSpace(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

void appendUTF8(std::string& text, std::uint32_t code) {
    if (code == 0 || code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF)) code = 0xFFFD;
    const auto byte = [&](std::uint32_t value) { text += static_cast<char>(static_cast<std::uint8_t>(value)); };
    if (code < 0x80) {
        byte(code);
    } else if (code < 0x800) {
        byte(0xC0 | (code >> 6));
        byte(0x80 | (code & 63));
    } else if (code < 0x10000) {
        byte(0xE0 | (code >> 12));
        byte(0x80 | ((code >> 6) & 63));
        byte(0x80 | (code & 63));
    } else {
        byte(0xF0 | (code >> 18));
        byte(0x80 | ((code >> 12) & 63));
        byte(0x80 | ((code >> 6) & 63));
        byte(0x80 | (code & 63));
    }
}

// Reads the reference at `html[0]`, an ampersand; gives how many characters it took, 0 when it is none.
std::size_t appendReference(std::string& text, std::string_view html) {
    const auto end = html.substr(0, 12).find(';');
    if (end == std::string_view::npos) return 0;
    const std::string_view name = html.substr(1, end - 1);
    static constexpr std::pair<std::string_view, std::string_view> named[] = {
        {"amp", "&"}, {"lt", "<"}, {"gt", ">"}, {"quot", "\""}, {"apos", "'"}, {"nbsp", "\u00A0"}};
    for (const auto& [known, meaning] : named)
        if (name == known) {
            text += meaning;
            return end + 1;
        }
    if (name.size() < 2 || name[0] != '#') return 0;
    const bool hexadecimal = name[1] == 'x' || name[1] == 'X';
    const std::string_view digits = name.substr(hexadecimal ? 2 : 1);
    std::uint32_t code = 0;
    const auto [rest, problem] =
        std::from_chars(digits.data(), digits.data() + digits.size(), code, hexadecimal ? 16 : 10);
    if (problem != std::errc() || rest != digits.data() + digits.size()) return 0;
    appendUTF8(text, code);
    return end + 1;
}

// The value of "href" among an element's attributes, with quotation marks or without; empty when there is none.
std::string hypertextReference(std::string_view attributes) {
    constexpr std::string_view name = "href=";
    const auto at = attributes.find(name);
    if (at == std::string_view::npos || at == 0 || !isSpace(attributes[at - 1])) return {};
    std::string_view value = attributes.substr(at + name.size());
    const bool isQuoted = value.starts_with('"') || value.starts_with('\'');
    const char quote = isQuoted ? value.front() : ' ';
    if (isQuoted) value.remove_prefix(1);
    std::string address;
    while (!value.empty() && (isQuoted ? value.front() != quote : !isSpace(value.front()))) {
        std::size_t taken = value.front() == '&' ? appendReference(address, value) : 0;
        if (taken == 0) {
            address += value.front();
            taken = 1;
        }
        value.remove_prefix(taken);
    }
    return address;
}

class BlockReader {
public:
    std::vector<HTMLBlock> read(std::string_view html) {
        while (!html.empty()) {
            if (html[0] == '<' && html.size() > 1 &&
                (std::isalpha(static_cast<unsigned char>(html[1])) || html[1] == '/' || html[1] == '!')) {
                const auto end = html.find('>');
                if (end == std::string_view::npos) break;
                element(html.substr(1, end - 1));
                html.remove_prefix(end + 1);
                continue;
            }
            std::string piece;
            std::size_t taken = html[0] == '&' ? appendReference(piece, html) : 0;
            if (taken == 0) {
                piece += html[0];
                taken = 1;
            }
            html.remove_prefix(taken);
            text(piece);
        }
        finishBlock();
        return std::move(m_blocks);
    }

private:
    void element(std::string_view tag) {
        const bool closes = tag.starts_with('/');
        if (closes) tag.remove_prefix(1);
        std::string name;
        for (const char c : tag) {
            if (isSpace(c) || c == '/') break;
            name += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        }
        if (name == "a") {
            m_address = closes ? "" : hypertextReference(tag);
        } else if (name == "ol" || name == "ul") {
            finishBlock();
            m_numbered = !closes && name == "ol";
            m_item = 0;
        } else if (name == "h1" || name == "h2" || name == "li" || name == "p" || name == "br") {
            finishBlock();
            if (closes) return;
            if (name == "h1") m_block.kind = HTMLBlock::Kind::Heading;
            if (name == "h2") m_block.kind = HTMLBlock::Kind::Subheading;
            if (name == "li") {
                m_block.kind = HTMLBlock::Kind::ListItem;
                m_block.marker = m_numbered ? std::to_string(++m_item) + "." : "•";
            }
        }
    }

    void text(const std::string& piece) {
        const bool space = piece.size() == 1 && isSpace(piece[0]);
        if (space && (m_block.runs.empty() || m_block.runs.back().text.ends_with(' '))) return;
        if (m_block.runs.empty() || m_block.runs.back().address != m_address) m_block.runs.push_back({"", m_address});
        m_block.runs.back().text += space ? " " : piece;
    }

    void finishBlock() {
        while (!m_block.runs.empty()) {
            auto& last = m_block.runs.back().text;
            while (last.ends_with(' ')) last.pop_back();
            if (!last.empty()) break;
            m_block.runs.pop_back();
        }
        if (!m_block.runs.empty()) m_blocks.push_back(std::move(m_block));
        m_block = {};
    }

    std::vector<HTMLBlock> m_blocks;
    HTMLBlock m_block;
    std::string m_address; // of the link that is open
    bool m_numbered = false;
    int m_item = 0;
};

} // namespace

std::string HTMLBlock::text() const {
    std::string all;
    for (const auto& run : runs) all += run.text;
    return all;
}

std::vector<HTMLBlock> htmlBlocks(std::string_view html) { return BlockReader().read(html); }

} // namespace seat
