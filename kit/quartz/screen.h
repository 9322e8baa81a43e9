#pragma once

#include "platform/quartz/CGGeometry.h"

namespace seat {

// What UIScreen tells from now on, on every thread. A scale that is no positive number counts as 1.
void setMainScreen(CGSize points, double scale);

} // namespace seat
