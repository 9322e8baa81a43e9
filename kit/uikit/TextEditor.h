#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace seat {

// One line of text with a caret and a selection, as keys change it. Places are bytes of the text and always lie between
// two characters; an accent that is a character of its own stays with its letter.
class TextEditor {
public:
    enum class Extent { Character, Word, All };
    enum class Selecting { No, Yes };

    const std::string& text() const { return m_text; }
    // The caret goes to the end.
    void setText(std::string_view text);

    std::size_t caret() const { return m_caret; }
    std::size_t selectionStart() const { return m_anchor < m_caret ? m_anchor : m_caret; }
    std::size_t selectionEnd() const { return m_anchor < m_caret ? m_caret : m_anchor; }
    bool hasSelection() const { return m_anchor != m_caret; }
    std::string selectedText() const { return m_text.substr(selectionStart(), selectionEnd() - selectionStart()); }
    // The caret stands at `caret`; a place inside a character, or behind the text, is moved to the next one in front.
    void select(std::size_t anchor, std::size_t caret);
    void selectWordAt(std::size_t place);

    // Where the caret can stand, from 0 to the end.
    std::vector<std::size_t> places() const;

    // In place of the selection.
    void insert(std::string_view text);
    // The selection, or what is beside the caret; false when there was nothing.
    bool deleteBackward(Extent extent);
    bool deleteForward(Extent extent);
    // Without selecting, a step of one character leaves a selection at its end.
    void moveBackward(Extent extent, Selecting selecting);
    void moveForward(Extent extent, Selecting selecting);
    // The caret goes there; selecting, the other end of the selection stays.
    void moveTo(std::size_t place, Selecting selecting);

private:
    std::size_t before(std::size_t place, Extent extent) const;
    std::size_t after(std::size_t place, Extent extent) const;

    std::string m_text;
    std::size_t m_anchor = 0; // the end of the selection at which the caret does not stand
    std::size_t m_caret = 0;
};

// Text on one line: line ends and tabs become spaces, other control characters go, and so does what is no UTF-8.
std::string onOneLine(std::string_view text);

} // namespace seat
