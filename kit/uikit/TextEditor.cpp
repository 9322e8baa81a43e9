#include "kit/uikit/TextEditor.h"

#include "kit/foundation/utf8.h"

#include <algorithm>
#include <cstdint>

namespace seat {

namespace {

bool continues(char byte) { return (static_cast<std::uint8_t>(byte) & 0xC0) == 0x80; }

// Combining marks, joiners and variation selectors, in the blocks where text has them most.
bool isMark(std::string_view text, std::size_t place) {
    const auto at = [&](std::size_t i) {
        return static_cast<std::uint8_t>(place + i < text.size() ? text[place + i] : 0);
    };
    if (at(0) == 0xCC || (at(0) == 0xCD && at(1) < 0xB0)) return true;       // U+0300 to U+036F
    if (at(0) == 0xE2 && at(1) == 0x80 && at(2) == 0x8D) return true;        // U+200D
    return at(0) == 0xEF && at(1) == 0xB8 && at(2) >= 0x80 && at(2) <= 0x8F; // U+FE00 to U+FE0F
}

bool isBoundary(std::string_view text, std::size_t place) {
    return place == 0 || place >= text.size() || (!continues(text[place]) && !isMark(text, place));
}

bool isSpace(char byte) { return byte == ' '; }

} // namespace

void TextEditor::setText(std::string_view text) {
    m_text = onOneLine(text);
    m_anchor = m_caret = m_text.size();
}

std::size_t TextEditor::before(std::size_t place, Extent extent) const {
    if (extent == Extent::All || place == 0) return 0;
    if (extent == Extent::Character) {
        do --place;
        while (!isBoundary(m_text, place));
        return place;
    }
    while (place > 0 && isSpace(m_text[place - 1])) --place;
    while (place > 0 && !isSpace(m_text[place - 1])) --place;
    return place;
}

std::size_t TextEditor::after(std::size_t place, Extent extent) const {
    if (extent == Extent::All || place >= m_text.size()) return m_text.size();
    if (extent == Extent::Character) {
        do ++place;
        while (!isBoundary(m_text, place));
        return place;
    }
    while (place < m_text.size() && isSpace(m_text[place])) ++place;
    while (place < m_text.size() && !isSpace(m_text[place])) ++place;
    return place;
}

void TextEditor::select(std::size_t anchor, std::size_t caret) {
    const auto valid = [this](std::size_t place) {
        place = std::min(place, m_text.size());
        while (!isBoundary(m_text, place)) --place;
        return place;
    };
    m_anchor = valid(anchor);
    m_caret = valid(caret);
}

void TextEditor::selectWordAt(std::size_t place) {
    place = std::min(place, m_text.size());
    std::size_t start = place;
    while (start > 0 && !isSpace(m_text[start - 1])) --start;
    std::size_t end = place;
    while (end < m_text.size() && !isSpace(m_text[end])) ++end;
    select(start, end);
}

std::vector<std::size_t> TextEditor::places() const {
    std::vector<std::size_t> found;
    for (std::size_t place = 0; place <= m_text.size(); ++place)
        if (isBoundary(m_text, place)) found.push_back(place);
    return found;
}

void TextEditor::insert(std::string_view text) {
    const std::string added = onOneLine(text);
    const std::size_t start = selectionStart();
    m_text.replace(start, selectionEnd() - start, added);
    m_anchor = m_caret = start + added.size();
}

bool TextEditor::deleteBackward(Extent extent) {
    if (!hasSelection()) m_anchor = before(m_caret, extent);
    if (!hasSelection()) return false;
    insert("");
    return true;
}

bool TextEditor::deleteForward(Extent extent) {
    if (!hasSelection()) m_anchor = after(m_caret, extent);
    if (!hasSelection()) return false;
    insert("");
    return true;
}

void TextEditor::moveBackward(Extent extent, Selecting selecting) {
    const bool leavesSelection = selecting == Selecting::No && extent == Extent::Character && hasSelection();
    moveTo(leavesSelection ? selectionStart() : before(m_caret, extent), selecting);
}

void TextEditor::moveForward(Extent extent, Selecting selecting) {
    const bool leavesSelection = selecting == Selecting::No && extent == Extent::Character && hasSelection();
    moveTo(leavesSelection ? selectionEnd() : after(m_caret, extent), selecting);
}

void TextEditor::moveTo(std::size_t place, Selecting selecting) {
    select(selecting == Selecting::Yes ? m_anchor : place, place);
}

std::string onOneLine(std::string_view text) {
    if (!isUTF8(text)) return {};
    std::string line;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<std::uint8_t>(text[i]);
        if (byte == '\r' && i + 1 < text.size() && text[i + 1] == '\n') continue;
        if (byte == '\n' || byte == '\r' || byte == '\t')
            line += ' ';
        else if (byte == 0xC2 && static_cast<std::uint8_t>(text[i + 1]) < 0xA0) // U+0080 to U+009F
            ++i;
        else if (byte >= 0x20 && byte != 0x7F)
            line += text[i];
    }
    return line;
}

} // namespace seat
