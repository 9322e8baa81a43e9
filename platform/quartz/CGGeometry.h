#pragma once

#include <limits>

// Points, sizes and rectangles; y grows downward. Plain records with the phone's helpers. Any thread. Nothing here
// fails: a coordinate that is no number makes comparisons false, so that such a rectangle contains no point, is empty
// and meets no other; whoever draws it draws nothing.

struct CGPoint {
    double x = 0;
    double y = 0;
    friend bool operator==(CGPoint, CGPoint) = default;
};

struct CGSize {
    double width = 0;
    double height = 0;
    friend bool operator==(CGSize, CGSize) = default;
};

struct CGRect {
    CGPoint origin;
    CGSize size;
    friend bool operator==(CGRect, CGRect) = default;
};

struct UIEdgeInsets {
    double top = 0;
    double left = 0;
    double bottom = 0;
    double right = 0;
    friend bool operator==(UIEdgeInsets, UIEdgeInsets) = default;
};

inline constexpr CGRect CGRectZero{};
inline constexpr CGRect CGRectNull{{std::numeric_limits<double>::infinity(), std::numeric_limits<double>::infinity()},
                                   {0, 0}};

constexpr CGPoint CGPointMake(double x, double y) { return {x, y}; }
constexpr CGSize CGSizeMake(double width, double height) { return {width, height}; }
constexpr CGRect CGRectMake(double x, double y, double width, double height) { return {{x, y}, {width, height}}; }

constexpr double CGRectGetMinX(CGRect r) { return r.origin.x; }
constexpr double CGRectGetMidX(CGRect r) { return r.origin.x + r.size.width / 2; }
constexpr double CGRectGetMaxX(CGRect r) { return r.origin.x + r.size.width; }
constexpr double CGRectGetMinY(CGRect r) { return r.origin.y; }
constexpr double CGRectGetMidY(CGRect r) { return r.origin.y + r.size.height / 2; }
constexpr double CGRectGetMaxY(CGRect r) { return r.origin.y + r.size.height; }

constexpr bool CGRectEqualToRect(CGRect a, CGRect b) { return a == b; }
constexpr bool CGRectIsNull(CGRect r) {
    return r.origin.x == std::numeric_limits<double>::infinity() ||
           r.origin.y == std::numeric_limits<double>::infinity();
}
// Null, or without area; a size that is negative or no number counts as without area.
constexpr bool CGRectIsEmpty(CGRect r) { return CGRectIsNull(r) || !(r.size.width > 0) || !(r.size.height > 0); }
// The right and bottom edges are outside.
constexpr bool CGRectContainsPoint(CGRect r, CGPoint p) {
    return p.x >= CGRectGetMinX(r) && p.x < CGRectGetMaxX(r) && p.y >= CGRectGetMinY(r) && p.y < CGRectGetMaxY(r);
}
// Plain arithmetic: a rectangle narrower than twice the inset gets a negative size.
constexpr CGRect CGRectInset(CGRect r, double dx, double dy) {
    return {{r.origin.x + dx, r.origin.y + dy}, {r.size.width - 2 * dx, r.size.height - 2 * dy}};
}
constexpr CGRect CGRectOffset(CGRect r, double dx, double dy) { return {{r.origin.x + dx, r.origin.y + dy}, r.size}; }
// The null rectangle when they do not meet.
CGRect CGRectIntersection(CGRect a, CGRect b);
// The null rectangle is the neutral element.
CGRect CGRectUnion(CGRect a, CGRect b);
bool CGRectIntersectsRect(CGRect a, CGRect b);
