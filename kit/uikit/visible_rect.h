#pragma once

#include "platform/quartz/CGGeometry.h"

class UIView;

namespace seat {

// The part of the view that no ancestor clips away, in the window's points; empty when there is none. Hidden views, and
// views in hidden ones, have none.
CGRect visibleRectInWindow(const UIView& view);

// What a user takes for the view, in its own coordinates: its bounds without the margins that it has to be touched more
// easily, or for what overhangs.
CGRect alignmentBounds(const UIView& view);

} // namespace seat
