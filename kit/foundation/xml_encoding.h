#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace seat {

// An XML text in UTF-8, whatever it comes in of what XML readers have in common: UTF-8, US-ASCII, UTF-16 of either
// order, ISO-8859-1. By its first bytes, else by its declaration, which stays as it is. The result lies in the bytes or
// in `converted`; what is UTF-8 by its own word comes back as it is, well-formed or not. Empty, and the reason in
// `refusal`, for another encoding and for broken UTF-16.
std::string_view utf8OfXML(std::span<const std::uint8_t> bytes, std::string& converted, std::string& refusal);

} // namespace seat
