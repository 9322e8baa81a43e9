#include "kit/foundation/xml_encoding.h"

#include "kit/foundation/utf8.h"

#include <algorithm>
#include <vector>

namespace {

using namespace seat;

enum class Encoding { UTF8, UTF16BigEndian, UTF16LittleEndian, Latin1, Other };

std::string lowered(std::string_view text) {
    std::string result(text);
    for (char& c : result)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c | 0x20);
    return result;
}

// What the declaration at the beginning of an 8-bit text names; empty when it names none.
std::string declaredEncoding(std::string_view text) {
    if (!text.starts_with("<?xml")) return {};
    const std::string_view declaration = text.substr(0, text.find("?>"));
    constexpr std::string_view word = "encoding";
    const auto at = declaration.find(word);
    if (at == std::string_view::npos) return {};
    const auto quote = declaration.find_first_of("\"'", at + word.size());
    if (quote == std::string_view::npos) return {};
    const auto end = declaration.find(declaration[quote], quote + 1);
    return lowered(declaration.substr(quote + 1, end == std::string_view::npos ? end : end - quote - 1));
}

Encoding encodingOf(std::string_view text) {
    using namespace std::literals;
    if (text.starts_with("\xfe\xff"sv) || text.starts_with("\0<"sv)) return Encoding::UTF16BigEndian;
    if (text.starts_with("\xff\xfe"sv) || text.starts_with("<\0"sv)) return Encoding::UTF16LittleEndian;
    const std::string name = declaredEncoding(text);
    if (name.empty() || name == "utf-8" || name == "us-ascii") return Encoding::UTF8;
    return name == "iso-8859-1" || name == "latin1" ? Encoding::Latin1 : Encoding::Other;
}

std::string utf8FromLatin1(std::string_view text) {
    std::string result;
    result.reserve(text.size() + text.size() / 8);
    for (const char c : text) {
        const auto byte = static_cast<std::uint8_t>(c);
        if (byte >= 0x80) result += static_cast<char>(0xc0 | byte >> 6);
        result += byte >= 0x80 ? static_cast<char>(0x80 | (byte & 0x3f)) : c;
    }
    return result;
}

// Without its mark of order.
std::vector<std::uint8_t> bigEndianUnits(std::span<const std::uint8_t> bytes, Encoding encoding) {
    std::vector<std::uint8_t> units(bytes.begin(), bytes.end());
    if (encoding == Encoding::UTF16LittleEndian)
        for (std::size_t i = 0; i + 1 < units.size(); i += 2) std::swap(units[i], units[i + 1]);
    if (units.size() >= 2 && units[0] == 0xfe && units[1] == 0xff) units.erase(units.begin(), units.begin() + 2);
    return units;
}

} // namespace

std::string_view seat::utf8OfXML(std::span<const std::uint8_t> bytes, std::string& converted, std::string& refusal) {
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    switch (const Encoding encoding = encodingOf(text)) {
    case Encoding::UTF8:
        return text;
    case Encoding::Latin1:
        return converted = utf8FromLatin1(text);
    case Encoding::UTF16BigEndian:
    case Encoding::UTF16LittleEndian: {
        const auto units = bigEndianUnits(bytes, encoding);
        if (isUTF16BigEndian(units)) return converted = utf8FromUTF16BigEndian(units);
        refusal = "is not UTF-16";
        return {};
    }
    case Encoding::Other:
        break;
    }
    refusal = "is in an encoding that is not read here";
    return {};
}
