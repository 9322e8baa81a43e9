#pragma once

#include "platform/foundation/NSError.h"

#include <cstdint>
#include <memory>
#include <span>
#include <string>

namespace seat {

// Replaces the file at a real path as replace_file.h says. nil is success; on failure the error comes back and the file
// is as it was. Any thread.
std::shared_ptr<NSError> writeFileAtomically(const std::string& path, std::span<const std::uint8_t> bytes);

// Overwrites in place; what was there is lost if it fails half-way. Errors as above.
std::shared_ptr<NSError> writeFile(const std::string& path, std::span<const std::uint8_t> bytes);

} // namespace seat
