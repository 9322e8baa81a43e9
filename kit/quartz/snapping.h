#pragma once

// Edges in device pixels. A sum of fractions may miss the edge that was meant by a rounding error; the allowance makes
// up for it.

#include <cmath>

namespace seat {

inline constexpr double snappingAllowance = 1e-4;

inline double pixelEdgeBelow(double edge) { return std::floor(edge + snappingAllowance); }
inline double pixelEdgeAbove(double edge) { return std::ceil(edge - snappingAllowance); }
// A half goes up, for both edges of a hairline alike.
inline double nearestPixelEdge(double edge) { return std::floor(edge + 0.5 + snappingAllowance); }
inline bool isOnPixelEdge(double edge) { return std::abs(edge - std::round(edge)) <= snappingAllowance; }

} // namespace seat
