#pragma once

// What the scan and the reader of XML property lists share: the elements' names, and the words of a refusal.

#include "kit/foundation/property_list.h"

#include <cstdint>
#include <optional>
#include <string_view>

namespace seat::xml {

enum class Element { Plist, Dict, Array, Key, String, Integer, Real, Date, Data, True, False };

// A name's letters in one word: every name that means something fits, and words are quick to compare.
constexpr std::uint64_t packed(std::string_view name) {
    std::uint64_t word = 0;
    for (const char c : name) word = word << 8 | static_cast<std::uint8_t>(c);
    return word;
}

// In the order of the elements.
inline constexpr std::uint64_t elementNames[] = {packed("plist"),  packed("dict"),    packed("array"), packed("key"),
                                                 packed("string"), packed("integer"), packed("real"),  packed("date"),
                                                 packed("data"),   packed("true"),    packed("false")};

inline std::optional<Element> elementNamed(std::uint64_t packedName) {
    switch (packedName) {
    case packed("plist"):
        return Element::Plist;
    case packed("dict"):
        return Element::Dict;
    case packed("array"):
        return Element::Array;
    case packed("key"):
        return Element::Key;
    case packed("string"):
        return Element::String;
    case packed("integer"):
        return Element::Integer;
    case packed("real"):
        return Element::Real;
    case packed("date"):
        return Element::Date;
    case packed("data"):
        return Element::Data;
    case packed("true"):
        return Element::True;
    case packed("false"):
        return Element::False;
    default:
        return std::nullopt;
    }
}
inline std::optional<Element> elementNamed(std::string_view name) {
    return name.size() > sizeof(std::uint64_t) ? std::nullopt : elementNamed(packed(name));
}

inline constexpr std::string_view spaces = " \t\r\n";
constexpr bool isSpace(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

inline std::string_view trimmed(std::string_view text) {
    while (!text.empty() && isSpace(text.front())) text.remove_prefix(1);
    while (!text.empty() && isSpace(text.back())) text.remove_suffix(1);
    return text;
}

static_assert(propertyListMaximumValues == 100'000 && propertyListMaximumDepth == 64);
inline constexpr const char* tooManyValues = "holds more than 100000 values";
inline constexpr const char* tooDeep = "is nested deeper than 64";
inline constexpr const char* unknownElement = "has an unknown element";
inline constexpr const char* unknownAttribute = "has an unknown attribute";
inline constexpr const char* unknownEntity = "refers to an entity that XML does not define";
inline constexpr const char* elementInText = "has an element within a text";
inline constexpr const char* wrongOrder = "has its elements in the wrong order";
inline constexpr const char* keyOutside = "has a key outside of a dictionary";
inline constexpr const char* keyAlone = "has a key without a value";
inline constexpr const char* valueAlone = "has a value without a key";
inline constexpr const char* manyValues = "holds more than one value";
inline constexpr const char* noValue = "holds no value";
inline constexpr const char* strayText = "has text between its elements";
inline constexpr const char* badScalar = "has a text that is no value of its type";

} // namespace seat::xml
