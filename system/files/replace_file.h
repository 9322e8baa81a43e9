#pragma once

#include "system/files/FilePlace.h"

#include <cstdint>
#include <functional>
#include <span>

namespace seat {

// Replaces the file at a place that was found without an error: at every instant, and after a power cut, it is the old
// one or the new one, whole. The bytes go to a temporary file beside it, which is flushed and renamed over it, and the
// folder is flushed. Mode, owner and group stay those of the file; who may not keep them replaces nothing. A new file
// is its owner's alone (0600). What writers that were killed have left is removed. `isStillRight` is asked just before
// the renaming; if it says no, nothing is replaced. 0, ESTALE in that case, or the error's number: then the file is as
// it was and the temporary is gone. Any thread.
int replaceFile(const FilePlace& place, std::span<const std::uint8_t> bytes,
                const std::function<bool()>& isStillRight = {});

// 0, or the error's number.
int writeAll(int descriptor, std::span<const std::uint8_t> bytes);

} // namespace seat
