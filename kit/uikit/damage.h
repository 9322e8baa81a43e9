#pragma once

#include "platform/quartz/CGGeometry.h"

#include <vector>

namespace seat {

// Adds what is to be repainted, cut to `bounds`, and keeps the list short: what overlaps, or is cheaper in one, joins.
void addDamage(std::vector<CGRect>& damage, CGRect rect, CGRect bounds);

} // namespace seat
