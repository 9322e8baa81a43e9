#pragma once

#include "platform/quartz/CGGeometry.h"

// x' = a x + c y + tx, y' = b x + d y + ty. A value with a number that is none makes what it transforms paint nothing.
// Plain values in doubles; equal to the bit. Any thread. By default the identity.
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

// Points to the right and down.
constexpr CGAffineTransform CGAffineTransformMakeTranslation(double tx, double ty) { return {1, 0, 0, 1, tx, ty}; }
