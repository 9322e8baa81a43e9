#pragma once

#include "platform/quartz/CGAffineTransform.h"

#include <array>

// A layer's transform, applied about its centre. Only its flat part is drawn: this interface is seen from straight
// above.
struct CATransform3D {
    std::array<double, 16> m{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}; // row by row: m11, m12, ...
    friend bool operator==(const CATransform3D&, const CATransform3D&) = default;
};

inline constexpr CATransform3D CATransform3DIdentity{};

// Of a layer it scales about the centre, which stays where it is; `sz` is kept and not seen.
constexpr CATransform3D CATransform3DMakeScale(double sx, double sy, double sz) {
    return {{sx, 0, 0, 0, 0, sy, 0, 0, 0, 0, sz, 0, 0, 0, 0, 1}};
}
