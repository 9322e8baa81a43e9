#pragma once

#include "kit/quartz/Canvas.h"
#include "platform/quartz/CALayer.h"

namespace seat {

// Paints the layer with all that stands in it inside the canvas's clip. `toPixels`: from the superlayer's coordinates.
void paintLayerTree(CALayer& layer, Canvas& canvas, const CGAffineTransform& toPixels);

} // namespace seat
