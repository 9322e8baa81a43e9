#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace seat {

// White space may stand anywhere. Nothing when another character comes, the padding is not what the length asks for, or
// bits are set that stand for no byte.
std::optional<std::vector<std::uint8_t>> decodeBase64(std::string_view text);

// On one line, padded.
std::string encodeBase64(std::string_view bytes);
// Whether decodeBase64() takes it.
bool isBase64(std::string_view text);

} // namespace seat
