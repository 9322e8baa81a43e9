#pragma once

#include <cmath>
#include <cstdint>
#include <limits>

// The whole number left of the point. Beyond the range of 32 bits the nearest end of it, and 0 for what is no number,
// as the phone's processor converts: a plain cast would be undefined there.
inline std::int32_t truncatedToInt(double value) {
    using Limits = std::numeric_limits<std::int32_t>;
    if (std::isnan(value)) return 0;
    if (value <= Limits::min()) return Limits::min();
    if (value >= Limits::max()) return Limits::max();
    return static_cast<std::int32_t>(value);
}
