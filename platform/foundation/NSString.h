#pragma once

// Strings are std::string, UTF-8. These read them as the phone's strings do, without regard to the locale.

#include <cstdint>
#include <string>
#include <string_view>

// There is no nil string: absent ones are empty, or a nil id.
using NSString = std::string;

// The leading decimal number after white space and a sign; 0 when there is none; saturates.
std::int64_t NSStringIntegerValue(std::string_view string);
// Decimal, without padding, whatever the locale.
std::string NSStringFromInteger(std::int64_t value);
// printf's formats in the "C" locale.
[[gnu::format(printf, 1, 2)]] std::string NSStringWithFormat(const char* format, ...);
