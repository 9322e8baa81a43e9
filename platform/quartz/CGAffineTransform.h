#pragma once

#include "platform/quartz/CGGeometry.h"

// x' = a x + c y + tx, y' = b x + d y + ty. A value with a number that is none makes what it transforms paint nothing.
struct CGAffineTransform {
    double a = 1;
    double b = 0;
    double c = 0;
    double d = 1;
    double tx = 0;
    double ty = 0;
    friend bool operator==(CGAffineTransform, CGAffineTransform) = default;
};

inline constexpr CGAffineTransform CGAffineTransformIdentity{};

constexpr CGAffineTransform CGAffineTransformMakeTranslation(double tx, double ty) { return {1, 0, 0, 1, tx, ty}; }
