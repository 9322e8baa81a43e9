#include "kit/quartz/outline.h"
#include "kit/quartz/geometry.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace seat {

namespace {

using Kind = CGPathElement::Kind;

// How far a chord may stand inside its arc, in pixels. The outline goes a little outside of it, so that the area is the
// same: no pixel is off by more than a step of 255.
constexpr double chordDepth = 0.006;
constexpr int mostChords = 256;            // a quarter
constexpr double straightAllowance = 1e-7; // square pixels by which three points in a line may miss it

int chordsOfAQuarter(double radius) {
    if (radius <= chordDepth) return 1;
    const double angle = 2 * std::acos(1 - chordDepth / radius);
    return static_cast<int>(std::clamp(std::ceil(std::numbers::pi / 2 / angle), 1.0, double{mostChords}));
}

double turn(CGPoint a, CGPoint b, CGPoint c) { return (b.x - a.x) * (c.y - b.y) - (b.y - a.y) * (c.x - b.x); }

// From the outline's last point.
void addCurve(Outline& outline, CGPoint control1, CGPoint control2, CGPoint end) {
    const CGPoint start = outline.back();
    const auto bend = [](CGPoint a, CGPoint b, CGPoint c) {
        return std::hypot(a.x - 2 * b.x + c.x, a.y - 2 * b.y + c.y);
    };
    const double sharpest = 6 * std::max(bend(start, control1, control2), bend(control1, control2, end));
    const int chords =
        static_cast<int>(std::clamp(std::ceil(std::sqrt(sharpest / 8 / chordDepth)), 1.0, double{mostChords}));
    for (int i = 1; i < chords; ++i) {
        const double t = static_cast<double>(i) / chords;
        const double u = 1 - t;
        const double a = u * u * u, b = 3 * u * u * t, c = 3 * u * t * t, d = t * t * t;
        outline.push_back({a * start.x + b * control1.x + c * control2.x + d * end.x,
                           a * start.y + b * control1.y + c * control2.y + d * end.y});
    }
    outline.push_back(end);
}

// Turns one way only, and once round.
bool isConvex(const Outline& outline) {
    const std::size_t count = outline.size();
    bool turnsLeft = false;
    bool turnsRight = false;
    int reversals = 0; // of the way along x; a polygon that goes once round has two
    int heading = 0;
    int firstHeading = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const CGPoint a = outline[i];
        const CGPoint b = outline[(i + 1) % count];
        const double bend = turn(a, b, outline[(i + 2) % count]);
        turnsLeft = turnsLeft || bend < -straightAllowance;
        turnsRight = turnsRight || bend > straightAllowance;
        const int goes = int{b.x > a.x} - int{b.x < a.x};
        if (goes == 0) continue;
        if (firstHeading == 0) firstHeading = goes;
        reversals += int{heading != 0 && goes != heading};
        heading = goes;
    }
    reversals += int{heading != firstHeading};
    return !(turnsLeft && turnsRight) && reversals <= 2;
}

} // namespace

Outline roundedOutline(double left, double top, double right, double bottom, double radius) {
    if (!(left < right) || !(top < bottom)) return {};
    radius = std::min({radius, (right - left) / 2, (bottom - top) / 2});
    if (!(radius > 0)) return {{left, top}, {right, top}, {right, bottom}, {left, bottom}};
    // Clockwise from the top right corner's first point.
    const CGPoint centers[] = {{right - radius, top + radius},
                               {right - radius, bottom - radius},
                               {left + radius, bottom - radius},
                               {left + radius, top + radius}};
    const int chords = chordsOfAQuarter(radius);
    const double step = std::numbers::pi / 2 / chords;
    const double cosine = std::cos(step);
    const double sine = std::sin(step);
    Outline outline;
    outline.reserve(4 * (static_cast<std::size_t>(chords) + 1));
    const double outward = std::sqrt(step / sine);
    CGPoint arm{0, -radius};
    for (const CGPoint& center : centers) {
        const CGPoint end{-arm.y, arm.x}; // a quarter further
        outline.push_back({center.x + arm.x, center.y + arm.y});
        for (int i = 1; i < chords; ++i) {
            arm = {arm.x * cosine - arm.y * sine, arm.x * sine + arm.y * cosine};
            outline.push_back({center.x + arm.x * outward, center.y + arm.y * outward});
        }
        // Where a straight side begins the outline is exact.
        outline.push_back({center.x + end.x, center.y + end.y});
        arm = end;
    }
    return outline;
}

Outline transformed(Outline outline, const CGAffineTransform& transform) {
    for (CGPoint& corner : outline) corner = CGPointApplyAffineTransform(corner, transform);
    return outline;
}

CGPath pathOf(const Outline& outline) {
    CGPath path;
    for (const CGPoint& corner : outline)
        path.elements.push_back({path.elements.empty() ? Kind::MoveTo : Kind::LineTo, {corner}});
    if (!path.elements.empty()) path.elements.push_back({Kind::Close, {}});
    return path;
}

std::optional<Outline> convexOutline(const CGPath& path, const CGAffineTransform& toPixels) {
    Outline outline;
    bool isClosed = false;
    for (const CGPathElement& element : path.elements) {
        if (element.kind == Kind::Close) {
            isClosed = true;
            continue;
        }
        const auto point = [&](int i) { return CGPointApplyAffineTransform(element.points[i], toPixels); };
        if (element.kind == Kind::CurveTo && !outline.empty())
            addCurve(outline, point(0), point(1), point(2));
        else if (outline.empty() == (element.kind == Kind::MoveTo) && !isClosed)
            outline.push_back(point(0));
        else
            return {};
    }
    if (!isConvex(outline)) return {};
    return outline;
}

} // namespace seat
