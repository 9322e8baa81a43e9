#pragma once

#include "platform/quartz/CGGeometry.h"

// x' = a x + c y + tx, y' = b x + d y + ty.
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
constexpr CGAffineTransform CGAffineTransformMakeScale(double sx, double sy) { return {sx, 0, 0, sy, 0, 0}; }
CGAffineTransform CGAffineTransformMakeRotation(double radians);
// First `a`, then `b`.
CGAffineTransform CGAffineTransformConcat(CGAffineTransform a, CGAffineTransform b);
// A transform that cannot be inverted comes back as it is.
CGAffineTransform CGAffineTransformInvert(CGAffineTransform t);
CGPoint CGPointApplyAffineTransform(CGPoint point, CGAffineTransform t);
// The smallest upright rectangle that holds the transformed one.
CGRect CGRectApplyAffineTransform(CGRect rect, CGAffineTransform t);
