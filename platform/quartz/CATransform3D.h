#pragma once

#include "platform/quartz/CGAffineTransform.h"

#include <array>

// A layer's transform. Only its flat part is drawn: this interface is seen from straight above.
struct CATransform3D {
    std::array<double, 16> m{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}; // row by row: m11, m12, ...
    friend bool operator==(const CATransform3D&, const CATransform3D&) = default;
};

inline constexpr CATransform3D CATransform3DIdentity{};

constexpr CATransform3D CATransform3DMakeScale(double sx, double sy, double sz) {
    return {{sx, 0, 0, 0, 0, sy, 0, 0, 0, 0, sz, 0, 0, 0, 0, 1}};
}
constexpr CATransform3D CATransform3DMakeTranslation(double tx, double ty, double tz) {
    return {{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, tx, ty, tz, 1}};
}
constexpr CATransform3D CATransform3DMakeAffineTransform(CGAffineTransform t) {
    return {{t.a, t.b, 0, 0, t.c, t.d, 0, 0, 0, 0, 1, 0, t.tx, t.ty, 0, 1}};
}
// The flat part.
constexpr CGAffineTransform CATransform3DGetAffineTransform(const CATransform3D& t) {
    return {t.m[0], t.m[1], t.m[4], t.m[5], t.m[12], t.m[13]};
}
