#pragma once

#include "platform/quartz/CALayer.h"

#include <memory>

class UIView;

namespace seat {

std::shared_ptr<CALayer> makeFocusRing();

// Where the ring round the view stands in its window, on whole points, within what clips the view; null when nothing of
// the view can be seen.
CGRect focusRingRect(const UIView& view);
double focusRingRadius(const UIView& view);

} // namespace seat
