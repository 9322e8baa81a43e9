#pragma once

#include "platform/foundation/NSError.h"

#include <cstdint>
#include <memory>
#include <span>
#include <string>

namespace seat {

// Replaces the file at a real path: at every instant it is the old one or the new one, whole. The bytes go to
// a temporary file beside it (temporary_file.h), which is flushed, renamed over the file, and the folder flushed. An
// existing file's mode bits are kept; a new file is its owner's alone (0600). On failure the error comes back, the file
// is as it was and the temporary is gone; nil is success. What a writer that was killed has left is removed. Any
// thread.
std::shared_ptr<NSError> writeFileAtomically(const std::string& path, std::span<const std::uint8_t> bytes);

// Overwrites in place; what was there is lost if it fails half-way. Errors as above.
std::shared_ptr<NSError> writeFile(const std::string& path, std::span<const std::uint8_t> bytes);

} // namespace seat
