#pragma once

// Arithmetic on points, rectangles and transforms, for the seat's own use.

#include "platform/quartz/CATransform3D.h"

constexpr CGPoint CGPointMake(double x, double y) { return {x, y}; }
constexpr CGSize CGSizeMake(double width, double height) { return {width, height}; }
constexpr CGRect CGRectMake(double x, double y, double width, double height) { return {{x, y}, {width, height}}; }
constexpr CGRect CGRectOffset(CGRect r, double dx, double dy) { return {{r.origin.x + dx, r.origin.y + dy}, r.size}; }
// The null rectangle when they do not meet.
CGRect CGRectIntersection(CGRect a, CGRect b);
// The null rectangle is the neutral element.
CGRect CGRectUnion(CGRect a, CGRect b);
bool CGRectIntersectsRect(CGRect a, CGRect b);

constexpr CGAffineTransform CGAffineTransformMakeScale(double sx, double sy) { return {sx, 0, 0, sy, 0, 0}; }
CGAffineTransform CGAffineTransformMakeRotation(double radians);
// First `a`, then `b`.
CGAffineTransform CGAffineTransformConcat(CGAffineTransform a, CGAffineTransform b);
// A transform that cannot be inverted comes back as it is.
CGAffineTransform CGAffineTransformInvert(CGAffineTransform t);
CGPoint CGPointApplyAffineTransform(CGPoint point, CGAffineTransform t);
// The smallest upright rectangle that holds the transformed one.
CGRect CGRectApplyAffineTransform(CGRect rect, CGAffineTransform t);

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
