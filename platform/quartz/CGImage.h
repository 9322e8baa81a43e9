#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

// Pixels, premultiplied, one 32-bit word each (alpha in the top byte, then red, green, blue), rows from the top without
// padding; `pixels` holds width times height of them. Immutable once shared; any thread.
// An image without pixels paints nothing. Width times height is the number of pixels, always.
struct CGImage {
    std::size_t width = 0; // pixels
    std::size_t height = 0;
    std::vector<std::uint32_t> pixels;
};
using CGImageRef = std::shared_ptr<const CGImage>;
