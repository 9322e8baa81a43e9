#include "kit/foundation/base64.h"
#include "kit/foundation/property_list.h"
#include "kit/foundation/property_list_scalars.h"
#include "kit/foundation/utf8.h"
#include "kit/foundation/xml_encoding.h"
#include "platform/foundation/NSArray.h"
#include "platform/foundation/NSDictionary.h"

#include <algorithm>
#include <expat.h>
#include <iterator>
#include <optional>
#include <string_view>
#include <vector>

namespace {

using namespace seat;
using namespace std::literals;

enum class Element { Plist, Dict, Array, Key, String, Integer, Real, Date, Data, True, False };

std::optional<Element> elementNamed(std::string_view name) {
    static constexpr std::string_view names[] = {"plist", "dict", "array", "key",  "string", "integer",
                                                 "real",  "date", "data",  "true", "false"};
    const auto* const found = std::find(std::begin(names), std::end(names), name);
    return found == std::end(names) ? std::nullopt : std::optional(static_cast<Element>(found - std::begin(names)));
}

constexpr std::string_view whiteSpace = " \t\r\n";

std::string_view trimmed(std::string_view text) {
    const auto first = text.find_first_not_of(whiteSpace);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(whiteSpace) + 1 - first);
}

static_assert(propertyListMaximumValues == 100'000 && propertyListMaximumDepth == 64);

// Builds the value while the tokeniser reports elements, and stops it at the first thing that does not belong.
class XMLReader {
public:
    XMLReader() : m_parser(XML_ParserCreate("UTF-8")) {
        XML_SetUserData(m_parser, this);
        XML_SetStartDoctypeDeclHandler(
            m_parser, [](void* self, const char* name, const char*, const char*, int hasInternalSubset) {
                if (name != "plist"sv) reader(self).refuse("is a document of another type");
                if (hasInternalSubset) reader(self).refuse("declares entities or types of its own");
            });
        // Without it a reference to an entity of the outer document type would simply vanish.
        XML_SetSkippedEntityHandler(m_parser, [](void* self, const char*, int) {
            reader(self).refuse("refers to an entity that XML does not define");
        });
        XML_SetElementHandler(
            m_parser,
            [](void* self, const char* name, const char** attributes) { reader(self).start(name, attributes); },
            [](void* self, const char*) { reader(self).end(); });
        XML_SetCharacterDataHandler(m_parser, [](void* self, const char* text, int length) {
            reader(self).characters({text, static_cast<std::size_t>(length)});
        });
    }
    ~XMLReader() { XML_ParserFree(m_parser); }
    XMLReader(const XMLReader&) = delete;
    XMLReader& operator=(const XMLReader&) = delete;

    id read(std::string_view text, std::string& refusal) {
        const auto status = XML_Parse(m_parser, text.data(), static_cast<int>(text.size()), XML_TRUE);
        if (status != XML_STATUS_OK && m_refusal.empty())
            refuse("is no XML: "s + XML_ErrorString(XML_GetErrorCode(m_parser)));
        if (m_refusal.empty()) return std::move(m_value);
        refusal = m_refusal;
        return nullptr;
    }

private:
    struct Container {
        std::shared_ptr<NSMutableDictionary> dictionary;
        std::shared_ptr<NSArray> array; // one of the two
        std::optional<std::string> key; // waits for its value
    };

    static XMLReader& reader(void* self) { return *static_cast<XMLReader*>(self); }

    void refuse(std::string reason) {
        if (!m_refusal.empty()) return;
        m_refusal = std::move(reason) + " (line " + std::to_string(XML_GetCurrentLineNumber(m_parser)) + ")";
        XML_StopParser(m_parser, XML_FALSE);
    }

    void start(const char* name, const char** attributes);
    void startValue(Element element);
    void end();
    void characters(std::string_view text);
    id scalar(Element element);
    void add(id value);

    XML_Parser m_parser;
    std::string m_refusal;
    bool m_inPlist = false;
    std::vector<Container> m_open;
    std::size_t m_count = 0;
    std::optional<Element> m_scalar; // whose text is being collected
    std::string m_text;
    id m_value;
};

void XMLReader::start(const char* name, const char** attributes) {
    if (!m_refusal.empty()) return;
    const auto element = elementNamed(name);
    if (!element) return refuse("has an unknown element");
    for (; *attributes; attributes += 2)
        if (element != Element::Plist || *attributes != "version"sv) return refuse("has an unknown attribute");
    if (m_scalar) return refuse("has an element within a text");
    if (m_inPlist == (element == Element::Plist)) return refuse("has its elements in the wrong order");

    if (element == Element::Plist) {
        m_inPlist = true;
    } else if (element == Element::Key) {
        if (m_open.empty() || !m_open.back().dictionary) return refuse("has a key outside of a dictionary");
        if (m_open.back().key) return refuse("has a key without a value");
        m_scalar = element;
    } else {
        startValue(*element);
    }
}

void XMLReader::startValue(Element element) {
    if (m_open.empty() ? bool(m_value) : m_open.back().dictionary && !m_open.back().key)
        return refuse(m_open.empty() ? "holds more than one value" : "has a value without a key");
    if (++m_count > propertyListMaximumValues) return refuse(propertyListTooMany);
    if (element != Element::Dict && element != Element::Array) {
        m_scalar = element;
        return;
    }
    if (m_open.size() == propertyListMaximumDepth) return refuse(propertyListTooDeep);
    if (element == Element::Dict)
        m_open.push_back({NSMutableDictionary::dictionary(), nullptr, {}});
    else
        m_open.push_back({nullptr, NSArray::array(), {}});
}

void XMLReader::end() {
    if (!m_refusal.empty()) return;
    if (m_scalar == Element::Key) {
        m_open.back().key = std::move(m_text);
    } else if (m_scalar) {
        id value = scalar(*m_scalar);
        if (!value) return refuse("has a text that is no value of its type");
        add(std::move(value));
    } else if (!m_open.empty()) {
        const Container closed = std::move(m_open.back());
        m_open.pop_back();
        if (closed.key) return refuse("has a key without a value");
        add(closed.dictionary ? id(closed.dictionary) : id(closed.array));
    } else if (!m_value) {
        refuse("holds no value");
    }
    m_scalar.reset();
    m_text.clear();
}

void XMLReader::characters(std::string_view text) {
    if (m_scalar)
        m_text += text;
    else if (text.find_first_not_of(whiteSpace) != std::string_view::npos)
        refuse("has text between its elements");
}

id XMLReader::scalar(Element element) {
    const std::string_view text = trimmed(m_text);
    switch (element) {
    case Element::String:
        return std::move(m_text);
    case Element::Integer:
        return integerFromText(text);
    case Element::Real:
        return realFromText(text);
    case Element::True:
        return text.empty() ? id(NSNumber::numberWithBool(true)) : id();
    case Element::False:
        return text.empty() ? id(NSNumber::numberWithBool(false)) : id();
    case Element::Date: {
        const auto date = dateFromText(text);
        return date ? id(*date) : id();
    }
    case Element::Data: {
        auto bytes = decodeBase64(text);
        return bytes ? id(NSData::dataWithVector(std::move(*bytes))) : id();
    }
    default:
        return nullptr;
    }
}

void XMLReader::add(id value) {
    if (m_open.empty()) {
        m_value = std::move(value);
        return;
    }
    Container& container = m_open.back();
    if (container.array) {
        container.array->addObject(std::move(value));
        return;
    }
    // Of two with the same key the last one counts, as for everybody who reads the file.
    container.dictionary->setObject_forKey(std::move(value), *container.key);
    container.key.reset();
}

} // namespace

id seat::readXMLPropertyList(std::span<const std::uint8_t> bytes, std::string& refusal) {
    std::string converted;
    refusal.clear();
    const std::string_view text = utf8OfXML(bytes, converted, refusal);
    if (!refusal.empty()) return nullptr;
    // Found out before anything is built: whatever the tokeniser would say, it would say it later.
    constexpr std::size_t longestEpilogue = 4096;
    if (text.substr(text.size() - std::min(text.size(), longestEpilogue)).find("</plist") == std::string_view::npos) {
        refusal = text.find("<plist") == std::string_view::npos ? "is no property list" : "is cut";
        return nullptr;
    }
    if (!isUTF8(text)) {
        refusal = "is not UTF-8";
        return nullptr;
    }
    return XMLReader().read(text, refusal);
}
