#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace seat {

bool isASCII(std::string_view text);

// Well-formed UTF-8: nothing cut or overlong, no surrogates, nothing above U+10FFFF.
bool isUTF8(std::string_view text);

// `codePoint` is one that may stand in a text: no surrogate, nothing above U+10FFFF.
void appendUTF8(std::string& text, std::uint32_t codePoint);

// How many UTF-16 units well-formed UTF-8 takes.
std::size_t utf16Length(std::string_view text);
// `text` must be well-formed; `bytes` takes two for each unit.
void writeUTF16BigEndian(std::uint8_t* bytes, std::string_view text);

// False when a surrogate lacks its other half or the length is odd.
bool isUTF16BigEndian(std::span<const std::uint8_t> bytes);
// `bytes` must be well-formed.
std::string utf8FromUTF16BigEndian(std::span<const std::uint8_t> bytes);

} // namespace seat
