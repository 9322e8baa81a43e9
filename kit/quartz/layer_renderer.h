#pragma once

#include "kit/quartz/pixels.h"
#include "platform/quartz/CALayer.h"

#include <span>

namespace seat {

// Draws what the tree shows now (see `advanceAnimations`) into the damaged places, and nothing beside them. What no
// layer covers is left as it is. `scale`: pixels a point; damage is in the root's superspace, where (0, 0) is the
// target's corner, and is taken out to whole pixels. Layer delegates draw meanwhile. Main thread only.
void renderLayerTree(CALayer& root, const PixelTarget& target, double scale, std::span<const CGRect> damageInPoints);

} // namespace seat
