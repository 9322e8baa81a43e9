#pragma once

// Closed outlines as the corners of a polygon, in device pixels; what is round has so many that nobody can tell.

#include "platform/quartz/CGAffineTransform.h"
#include "platform/quartz/CGPath.h"

#include <optional>
#include <vector>

namespace seat {

// The last corner is joined to the first.
using Outline = std::vector<CGPoint>;

// No corners when there is no area. A radius beyond half of the shorter side is cut to it.
Outline roundedOutline(double left, double top, double right, double bottom, double radius);

Outline transformed(Outline outline, const CGAffineTransform& transform);

CGPath pathOf(const Outline& outline);

// Nothing for a path that has several parts, or that does not turn one way only and once round: there it would depend
// on the rule for filling what is inside.
std::optional<Outline> convexOutline(const CGPath& path, const CGAffineTransform& toPixels);

} // namespace seat
