#pragma once

#include "kit/quartz/geometry.h"
#include "platform/quartz/CATransform3D.h"
#include "platform/quartz/CGColor.h"
#include "platform/quartz/CGGeometry.h"

namespace seat {

// The properties of a layer that can move over time.
struct LayerValues {
    CGRect bounds;
    CGPoint position;
    CATransform3D transform;
    double opacity = 1;
    double cornerRadius = 0;
    double borderWidth = 0;
    CGColorRef borderColor;
    CGColorRef backgroundColor;
};

// They look the same.
inline bool isSameColor(const CGColorRef& a, const CGColorRef& b) { return a == b || (a && b && *a == *b); }

// From the layer's own coordinates to its superlayer's.
inline CGAffineTransform transformToSuperlayer(const LayerValues& values) {
    const CGAffineTransform t = CATransform3DGetAffineTransform(values.transform);
    const double x = CGRectGetMidX(values.bounds);
    const double y = CGRectGetMidY(values.bounds);
    return {t.a,
            t.b,
            t.c,
            t.d,
            t.tx + values.position.x - (t.a * x + t.c * y),
            t.ty + values.position.y - (t.b * x + t.d * y)};
}

} // namespace seat
