#pragma once

#include "platform/quartz/CGGeometry.h"

class UIView;

namespace seat {

// The part of the view that no ancestor clips away, in the window's points; empty when there is none. Hidden views, and
// views in hidden ones, have none.
CGRect visibleRectInWindow(const UIView& view);

} // namespace seat
