#pragma once

// Property lists in memory: strict reading of XML (UTF-8, UTF-16, ISO-8859-1) and binary (bplist00), writing of binary.
// Any thread.
//
// Read and written: dictionaries, arrays, strings, data, dates, booleans, reals of 4 and 8 bytes (bit for bit),
// integers from -2^63 to 2^64-1. Of a key that comes twice in a dictionary the last value counts. Refused: anything
// that is cut, out of bounds, or that different readers read differently.

#include "platform/foundation/NSData.h"
#include "platform/foundation/NSPropertyListSerialization.h"
#include "platform/foundation/id.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace seat {

// What is larger is neither read nor written: everything written can be read back.
inline constexpr std::size_t propertyListMaximumLength = 4u << 20;
// The outermost value has depth 1.
inline constexpr std::size_t propertyListMaximumDepth = 64;
// Keys do not count. A value that a binary file refers to more than once counts each time.
inline constexpr std::size_t propertyListMaximumValues = 100'000;

// Why something beyond the bounds is refused.
inline constexpr const char* propertyListTooLarge = "is larger than 4194304 bytes";
inline constexpr const char* propertyListTooDeep = "is nested deeper than 64";
inline constexpr const char* propertyListTooMany = "holds more than 100000 values";
static_assert(propertyListMaximumLength == 4 << 20 && propertyListMaximumDepth == 64 &&
              propertyListMaximumValues == 100'000);
// The reason is one of these, wherever it was found: what was refused may well be sound.
inline bool isBeyondPropertyListBounds(std::string_view refusal) {
    return refusal.starts_with(propertyListTooLarge) || refusal.starts_with(propertyListTooDeep) ||
           refusal.starts_with(propertyListTooMany);
}

// nil, and the reason in `refusal`, when the bytes are refused. `format` may be null.
id readPropertyList(std::span<const std::uint8_t> bytes, NSPropertyListFormat* format, std::string& refusal);

// nil, and the reason in `refusal`, for a value that is no property list or is beyond the bounds.
std::shared_ptr<NSData> writeBinaryPropertyList(const id& value, std::string& refusal);

// The file at a real path; nil and an error that names it when it cannot be read or is refused. The error's code is the
// system's error number, or 0 for a refusal.
id readPropertyListFile(const std::string& path, std::shared_ptr<NSError>* error);

// What readPropertyList() chooses from.
id readXMLPropertyList(std::span<const std::uint8_t> bytes, std::string& refusal);
id readBinaryPropertyList(std::span<const std::uint8_t> bytes, std::string& refusal);

} // namespace seat
