#pragma once

// The texts of the scalar elements of an XML property list. Nothing comes back for a text that is not exactly one
// value.

#include "platform/foundation/id.h"

#include <optional>
#include <string_view>

namespace seat {

// Decimal, or hexadecimal after "0x", with a sign; from -2^63 to 2^64-1. Signed unless only the unsigned type holds it.
std::optional<NSNumber> integerFromText(std::string_view text);
// Decimal, or "nan", "inf", "infinity" with or without a sign, in any case.
std::optional<NSNumber> realFromText(std::string_view text);
// YYYY-MM-DDThh:mm:ssZ of the Gregorian calendar.
std::optional<NSDate> dateFromText(std::string_view text);

} // namespace seat
