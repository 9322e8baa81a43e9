#include "platform/quartz/CGGeometry.h"
#include "kit/quartz/geometry.h"

#include <algorithm>

CGRect CGRectIntersection(CGRect a, CGRect b) {
    if (CGRectIsNull(a) || CGRectIsNull(b)) return CGRectNull;
    const double left = std::max(CGRectGetMinX(a), CGRectGetMinX(b));
    const double top = std::max(CGRectGetMinY(a), CGRectGetMinY(b));
    const double right = std::min(CGRectGetMaxX(a), CGRectGetMaxX(b));
    const double bottom = std::min(CGRectGetMaxY(a), CGRectGetMaxY(b));
    // Rectangles that only touch share an empty rectangle; a value that is no number makes them not meet.
    if (!(left <= right) || !(top <= bottom)) return CGRectNull;
    return {{left, top}, {right - left, bottom - top}};
}

CGRect CGRectUnion(CGRect a, CGRect b) {
    if (CGRectIsNull(a)) return b;
    if (CGRectIsNull(b)) return a;
    const double left = std::min(CGRectGetMinX(a), CGRectGetMinX(b));
    const double top = std::min(CGRectGetMinY(a), CGRectGetMinY(b));
    const double right = std::max(CGRectGetMaxX(a), CGRectGetMaxX(b));
    const double bottom = std::max(CGRectGetMaxY(a), CGRectGetMaxY(b));
    return {{left, top}, {right - left, bottom - top}};
}

bool CGRectIntersectsRect(CGRect a, CGRect b) { return !CGRectIsEmpty(CGRectIntersection(a, b)); }
