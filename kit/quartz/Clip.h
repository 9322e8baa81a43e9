#pragma once

#include "kit/quartz/pixels.h"
#include "platform/quartz/CGPath.h"

#include <memory>

namespace seat {

// Paths in device pixels, filled by the winding rule: what is drawn lies inside of each.
struct ClipShape {
    CGPath path;
    std::shared_ptr<const ClipShape> outer; // nil at the end
};

// What is drawn is cut to this.
struct Clip {
    PixelRect rect;
    std::shared_ptr<const ClipShape> shape; // nil: the rectangle alone
};

} // namespace seat
