#pragma once

#include <limits>

// Points, sizes and rectangles; y grows downward. Plain records with the phone's helpers. Any thread. Nothing here
// fails: a coordinate that is no number makes comparisons false, so that such a rectangle contains no point, is empty
// and meets no other; whoever draws it draws nothing.

// A place, in points unless whoever uses it says otherwise.
struct CGPoint {
    double x = 0;
    double y = 0;
    friend bool operator==(CGPoint, CGPoint) = default;
};

// Both may be negative or 0 while something is worked out; what is shown then has no area.
struct CGSize {
    double width = 0;
    double height = 0;
    friend bool operator==(CGSize, CGSize) = default;
};

// From its top left corner; never turned. No function here makes a negative size positive.
struct CGRect {
    CGPoint origin;
    CGSize size;
    friend bool operator==(CGRect, CGRect) = default;
};

// How far each edge moves inward; negative ones move it outward.
struct UIEdgeInsets {
    double top = 0;
    double left = 0;
    double bottom = 0;
    double right = 0;
    friend bool operator==(UIEdgeInsets, UIEdgeInsets) = default;
};

// Nothing at the origin, and nothing nowhere: what an intersection of rectangles that do not meet gives.
inline constexpr CGRect CGRectZero{};
inline constexpr CGRect CGRectNull{{std::numeric_limits<double>::infinity(), std::numeric_limits<double>::infinity()},
                                   {0, 0}};

// The edges as they are given: of a negative size the "max" edge lies before the "min" one.
constexpr double CGRectGetMinX(CGRect r) { return r.origin.x; }
constexpr double CGRectGetMidX(CGRect r) { return r.origin.x + r.size.width / 2; }
constexpr double CGRectGetMaxX(CGRect r) { return r.origin.x + r.size.width; }
constexpr double CGRectGetMinY(CGRect r) { return r.origin.y; }
constexpr double CGRectGetMidY(CGRect r) { return r.origin.y + r.size.height / 2; }
constexpr double CGRectGetMaxY(CGRect r) { return r.origin.y + r.size.height; }

// Exact, to the bit but for -0; a rectangle with a coordinate that is no number equals none, not even itself.
constexpr bool CGRectEqualToRect(CGRect a, CGRect b) { return a == b; }
// Either coordinate of the origin is infinite, as in CGRectNull.
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
