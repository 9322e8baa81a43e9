#pragma once

// What a convex path covers; the paths that were filled last are remembered.

#include "kit/quartz/Coverage.h"
#include "platform/quartz/CGPath.h"

#include <optional>

namespace seat {

struct PathCoverage {
    CoveredRuns runs; // counted from (x, y)
    int x = 0;
    int y = 0;
};

// Of the pixels in `clip` at least. Nothing for a path that needs a rule for filling.
std::optional<PathCoverage> convexPathCoverage(const CGPath& path, const CGAffineTransform& toPixels,
                                               const PixelRect& clip);

} // namespace seat
