#include "platform/quartz/CGAffineTransform.h"
#include "kit/quartz/geometry.h"

#include <algorithm>
#include <cmath>

CGAffineTransform CGAffineTransformMakeRotation(double radians) {
    const double sine = std::sin(radians);
    const double cosine = std::cos(radians);
    return {cosine, sine, -sine, cosine, 0, 0};
}

CGAffineTransform CGAffineTransformConcat(CGAffineTransform a, CGAffineTransform b) {
    return {a.a * b.a + a.b * b.c, a.a * b.b + a.b * b.d,          a.c * b.a + a.d * b.c,
            a.c * b.b + a.d * b.d, a.tx * b.a + a.ty * b.c + b.tx, a.tx * b.b + a.ty * b.d + b.ty};
}

CGAffineTransform CGAffineTransformInvert(CGAffineTransform t) {
    const double determinant = t.a * t.d - t.b * t.c;
    if (determinant == 0 || !std::isfinite(determinant)) return t;
    return {t.d / determinant,
            -t.b / determinant,
            -t.c / determinant,
            t.a / determinant,
            (t.c * t.ty - t.d * t.tx) / determinant,
            (t.b * t.tx - t.a * t.ty) / determinant};
}

CGPoint CGPointApplyAffineTransform(CGPoint point, CGAffineTransform t) {
    return {t.a * point.x + t.c * point.y + t.tx, t.b * point.x + t.d * point.y + t.ty};
}

CGRect CGRectApplyAffineTransform(CGRect rect, CGAffineTransform t) {
    if (CGRectIsNull(rect)) return rect;
    if (t.a == 1 && t.b == 0 && t.c == 0 && t.d == 1) return CGRectOffset(rect, t.tx, t.ty);
    if (t.b == 0 && t.c == 0 && t.a > 0 && t.d > 0)
        return {{t.a * rect.origin.x + t.tx, t.d * rect.origin.y + t.ty},
                {t.a * rect.size.width, t.d * rect.size.height}};
    const CGPoint corners[] = {
        CGPointApplyAffineTransform({CGRectGetMinX(rect), CGRectGetMinY(rect)}, t),
        CGPointApplyAffineTransform({CGRectGetMaxX(rect), CGRectGetMinY(rect)}, t),
        CGPointApplyAffineTransform({CGRectGetMinX(rect), CGRectGetMaxY(rect)}, t),
        CGPointApplyAffineTransform({CGRectGetMaxX(rect), CGRectGetMaxY(rect)}, t),
    };
    const auto [left, right] = std::minmax({corners[0].x, corners[1].x, corners[2].x, corners[3].x});
    const auto [top, bottom] = std::minmax({corners[0].y, corners[1].y, corners[2].y, corners[3].y});
    return {{left, top}, {right - left, bottom - top}};
}
