#include "kit/foundation/xml_property_list_scan.h"

#include "kit/foundation/base64.h"
#include "kit/foundation/property_list_scalars.h"
#include "kit/foundation/xml_property_list_words.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <vector>

namespace {

using namespace seat;
using namespace seat::xml;

constexpr const char* badTag = "is no XML: mismatched tag";
constexpr const char* badToken = "is no XML: not well-formed (invalid token)";
constexpr const char* undefinedEntity = "is no XML: undefined entity";
constexpr const char* unclosed = "is no XML: unclosed token";
constexpr const char* junk = "is no XML: junk after document element";

// Whether a character may end a run of text.
constexpr auto endsRun = [] {
    std::array<bool, 256> all{};
    for (std::size_t c = 0; c < all.size(); ++c)
        all[c] = c == '<' || c == '&' || (c < 0x20 && !isSpace(static_cast<char>(c)));
    return all;
}();

// The first place from `at` on where a run of text may end. Eight characters at a time.
std::size_t endOfRun(std::string_view text, std::size_t at) {
    constexpr std::uint64_t ones = 0x0101010101010101, high = 0x80 * ones;
    const auto hasZero = [](std::uint64_t word) { return (word - ones) & ~word & high; };
    for (;;) {
        for (std::uint64_t word = 0; at + sizeof word <= text.size(); at += sizeof word) {
            std::memcpy(&word, text.data() + at, sizeof word);
            if (hasZero(word ^ '<' * ones) | hasZero(word ^ '&' * ones) | ((word - 0x20 * ones) & ~word & high)) break;
        }
        // One of the eight, or the last few of all.
        const std::size_t near = std::min(text.size(), at + 8);
        while (at < near && !endsRun[static_cast<std::uint8_t>(text[at])]) ++at;
        if (at == text.size() || at < near) return at;
    }
}

class Scan {
public:
    explicit Scan(std::string_view text) : m_text(text) {}

    std::string fault() {
        if (m_text.starts_with("\xef\xbb\xbf")) m_at = 3;
        while (m_at < m_text.size() && step()) {
        }
        if (!m_fault && !m_isLeftToReader && !m_isClosed) m_fault = "is no XML: no element found";
        if (!m_fault) return {};
        const auto line = 1 + std::count(m_text.begin(), m_text.begin() + static_cast<std::ptrdiff_t>(m_token), '\n');
        return std::string(m_fault) + " (line " + std::to_string(line) + ")";
    }

private:
    struct Container {
        Element element;     // Plist for the outermost
        bool hasKey = false; // one that waits for its value
        bool hasValue = false;
    };

    bool refuse(const char* reason) {
        m_fault = reason;
        return false;
    }
    bool leaveToReader() {
        m_isLeftToReader = true;
        return false;
    }

    // What stands at the place; false at the first fault.
    bool step() {
        if (m_text[m_at] != '<') return m_scalar ? scalarText() : betweenElements();
        m_token = m_at;
        const char next = m_at + 1 < m_text.size() ? m_text[m_at + 1] : '\0';
        if (next == '/') return endTag();
        if (next == '!') return declaration();
        if (next == '?') return skipTo("?>", 2);
        return startTag();
    }

    bool skipTo(std::string_view end, std::size_t from) {
        m_isPlain = false;
        const auto found = m_text.find(end, m_at + from);
        if (found == std::string_view::npos) return refuse(unclosed);
        m_at = found + end.size();
        return true;
    }

    // Where one of the characters stands outside of quotes; the text's length when none does.
    std::size_t unquoted(std::string_view characters, std::size_t at) const {
        for (char quote = '\0'; at < m_text.size(); ++at) {
            const char c = m_text[at];
            if (quote != '\0' ? c == quote : c == '"' || c == '\'')
                quote = quote != '\0' ? '\0' : c;
            else if (quote == '\0' && characters.find(c) != std::string_view::npos)
                break;
        }
        return at;
    }

    bool declaration() {
        const std::string_view rest = m_text.substr(m_at);
        if (rest.starts_with("<!--")) return comment();
        if (rest.starts_with("<![CDATA[")) return m_scalar ? skipTo("]]>", 9) : leaveToReader();
        // A document type: its own declarations, if any, are the reader's to refuse, and it does so at once.
        const std::size_t end = unquoted(">[", m_at);
        if (end == m_text.size() || m_text[end] == '[' || !m_open.empty() || m_isClosed) return leaveToReader();
        m_hasDocumentType = true;
        m_at = end + 1;
        return true;
    }

    bool comment() {
        if (!skipTo("--", 4)) return false;
        if (m_at < m_text.size() && m_text[m_at] == '>') return ++m_at, true;
        return refuse(badToken);
    }

    bool betweenElements() {
        while (m_at < m_text.size() && isSpace(m_text[m_at])) ++m_at;
        if (m_at == m_text.size() || m_text[m_at] == '<') return true;
        m_token = m_at;
        if (m_text[m_at] == '&') return leaveToReader(); // it may spell a space
        return refuse(m_isClosed ? junk : m_open.empty() ? badToken : strayText);
    }

    bool scalarText() {
        m_at = endOfRun(m_text, m_at);
        if (m_at == m_text.size() || m_text[m_at] == '<') return true;
        m_token = m_at;
        return m_text[m_at] == '&' ? entity() : refuse(badToken);
    }

    bool entity() {
        m_isPlain = false;
        constexpr std::size_t longest = 16;
        const std::string_view rest = m_text.substr(m_at + 1, longest);
        const auto end = rest.find(';');
        // A number with many zeros in front may be longer than that.
        if (rest.starts_with('#')) {
            if (end == std::string_view::npos) return leaveToReader();
        } else {
            const std::string_view name = rest.substr(0, end);
            constexpr std::string_view known[] = {"amp", "lt", "gt", "quot", "apos"};
            if (end == std::string_view::npos || std::find(std::begin(known), std::end(known), name) == std::end(known))
                return end == std::string_view::npos ? leaveToReader()
                                                     : refuse(m_hasDocumentType ? unknownEntity : undefinedEntity);
        }
        m_at += 1 + end + 1;
        return true;
    }

    // The letters from `at` on, packed; `at` is behind them then. 0 for none and for more than any name has.
    std::uint64_t readName(std::size_t& at) const {
        std::uint64_t name = 0;
        const std::size_t start = at;
        for (; at < m_text.size() && m_text[at] >= 'a' && m_text[at] <= 'z'; ++at)
            name = name << 8 | static_cast<std::uint8_t>(m_text[at]);
        return at - start > sizeof name ? 0 : name;
    }

    bool startTag() {
        std::size_t end = m_at + 1;
        if (m_isClosed) return refuse(junk);
        const auto element = elementNamed(readName(end));
        if (end == m_text.size()) return refuse(unclosed);
        const bool isWholeName = isSpace(m_text[end]) || m_text[end] == '>' || m_text[end] == '/';
        if (!element || !isWholeName) return refuse(unknownElement);
        while (end < m_text.size() && isSpace(m_text[end])) ++end;
        // Its attributes are the reader's to judge, and it does so at once.
        if (element == Element::Plist) end = unquoted("/>", end);
        if (end == m_text.size()) return refuse(unclosed);
        const bool isEmpty = m_text[end] == '/';
        if (isEmpty) ++end;
        if (end == m_text.size() || m_text[end] != '>') return refuse(unknownAttribute);
        m_at = end + 1;
        if (!begin(*element)) return false;
        return !isEmpty || finish(*element, {});
    }

    bool begin(Element element) {
        if (m_scalar) return refuse(elementInText);
        if (m_open.empty() != (element == Element::Plist)) return refuse(wrongOrder);
        if (element == Element::Plist) {
            m_open.push_back({element});
            return true;
        }
        Container& container = m_open.back();
        const bool isInDictionary = container.element == Element::Dict;
        if (element == Element::Key) {
            if (!isInDictionary) return refuse(keyOutside);
            if (container.hasKey) return refuse(keyAlone);
        } else {
            if (isInDictionary && !container.hasKey) return refuse(valueAlone);
            if (container.element == Element::Plist && container.hasValue) return refuse(manyValues);
            if (++m_values > propertyListMaximumValues) return refuse(tooManyValues);
        }
        if (element != Element::Dict && element != Element::Array) {
            m_scalar = element;
            m_scalarAt = m_at;
            m_isPlain = true;
            return true;
        }
        if (m_open.size() > propertyListMaximumDepth) return refuse(tooDeep);
        m_open.push_back({element});
        return true;
    }

    bool endTag() {
        if (m_isClosed) return refuse(junk);
        if (m_open.empty()) return refuse(badTag);
        const Element element = m_scalar.value_or(m_open.back().element);
        std::size_t end = m_at + 2;
        if (readName(end) != elementNames[static_cast<std::size_t>(element)]) return refuse(badTag);
        while (end < m_text.size() && isSpace(m_text[end])) ++end;
        if (end == m_text.size() || m_text[end] != '>') return refuse(badTag);
        const std::string_view text = m_scalar ? m_text.substr(m_scalarAt, m_at - m_scalarAt) : std::string_view();
        m_at = end + 1;
        return finish(element, text);
    }

    bool finish(Element element, std::string_view text) {
        if (m_scalar) {
            m_scalar.reset();
            // A text with more than characters in it is the reader's to judge.
            if (m_isPlain && !isSound(element, text)) return refuse(badScalar);
            if (element == Element::Key) {
                m_open.back().hasKey = true;
                return true;
            }
        } else {
            if (m_open.back().hasKey) return refuse(keyAlone);
            if (element == Element::Plist && !m_open.back().hasValue) return refuse(noValue);
            m_open.pop_back();
            if (m_open.empty()) {
                m_isClosed = true;
                return true;
            }
        }
        m_open.back().hasKey = false;
        m_open.back().hasValue = true;
        return true;
    }

    static bool isSound(Element element, std::string_view text) {
        switch (element) {
        case Element::Integer:
            return integerFromText(trimmed(text)).has_value();
        case Element::Real:
            return realFromText(trimmed(text)).has_value();
        case Element::Date:
            return dateFromText(trimmed(text)).has_value();
        case Element::Data:
            return isBase64(text);
        case Element::True:
        case Element::False:
            return trimmed(text).empty();
        default:
            return true;
        }
    }

    std::string_view m_text;
    std::size_t m_at = 0;
    std::size_t m_token = 0; // where the last tag began, or the fault
    const char* m_fault = nullptr;
    bool m_isLeftToReader = false;
    bool m_hasDocumentType = false;
    bool m_isClosed = false; // the outermost element is
    std::vector<Container> m_open;
    std::size_t m_values = 0;
    std::optional<Element> m_scalar; // the text that is being looked at
    std::size_t m_scalarAt = 0;
    bool m_isPlain = true; // it is characters alone
};

} // namespace

std::string seat::faultOfXMLPropertyList(std::string_view text) { return Scan(text).fault(); }
