#include "platform/uikit/UIBezierPath.h"

#include "kit/quartz/drawing.h"
#include "platform/uikit/UIImage.h"

#include <algorithm>

NS_CLASS_IMPLEMENTATION(UIBezierPath, NSObject)

namespace {

using Kind = CGPathElement::Kind;

// How far a quarter circle's control points stand from its ends, in radii.
constexpr double quarterCircle = 0.5522847498307936;

// A quarter of an ellipse round `center`, from center + a to center + b, the current point being its start.
CGPathElement quarter(CGPoint center, CGPoint a, CGPoint b) {
    const double k = quarterCircle;
    return {Kind::CurveTo,
            {{center.x + a.x + k * b.x, center.y + a.y + k * b.y},
             {center.x + b.x + k * a.x, center.y + b.y + k * a.y},
             {center.x + b.x, center.y + b.y}}};
}

} // namespace

std::shared_ptr<UIBezierPath> UIBezierPath::bezierPath() { return alloc(); }

std::shared_ptr<UIBezierPath>
UIBezierPath::bezierPathWithRoundedRect_byRoundingCorners_cornerRadii(CGRect rect, unsigned corners, CGSize radii) {
    const auto path = alloc();
    if (CGRectIsEmpty(rect)) return path;
    const double rx = std::clamp(radii.width, 0.0, rect.size.width / 2);
    const double ry = std::clamp(radii.height, 0.0, rect.size.height / 2);
    const double left = CGRectGetMinX(rect), right = CGRectGetMaxX(rect);
    const double top = CGRectGetMinY(rect), bottom = CGRectGetMaxY(rect);
    auto& elements = path->m_path.elements;
    // Clockwise, each corner from where the edge before it ends; a square corner has no radii.
    enum class First { Across, Down }; // which way a corner begins
    const auto corner = [&](UIRectCorner which, CGPoint at, CGPoint outward, First first) {
        const bool round = (corners & which) != 0 && rx > 0 && ry > 0;
        const double x = round ? rx : 0;
        const double y = round ? ry : 0;
        const CGPoint center{at.x - outward.x * x, at.y - outward.y * y};
        const CGPoint sideways{outward.x * x, 0};
        const CGPoint upright{0, outward.y * y};
        const bool beginsAcross = first == First::Across;
        const CGPoint start = beginsAcross ? sideways : upright;
        elements.push_back(
            {elements.empty() ? Kind::MoveTo : Kind::LineTo, {{center.x + start.x, center.y + start.y}, {}, {}}});
        if (round) elements.push_back(quarter(center, start, beginsAcross ? upright : sideways));
    };
    corner(UIRectCornerTopLeft, {left, top}, {-1, -1}, First::Across);
    corner(UIRectCornerTopRight, {right, top}, {1, -1}, First::Down);
    corner(UIRectCornerBottomRight, {right, bottom}, {1, 1}, First::Across);
    corner(UIRectCornerBottomLeft, {left, bottom}, {-1, 1}, First::Down);
    path->closePath();
    return path;
}

std::shared_ptr<UIBezierPath> UIBezierPath::bezierPathWithOvalInRect(CGRect rect) {
    return bezierPathWithRoundedRect_byRoundingCorners_cornerRadii(rect, UIRectCornerAllCorners,
                                                                   {rect.size.width / 2, rect.size.height / 2});
}

void UIBezierPath::moveToPoint(CGPoint point) { m_path.elements.push_back({Kind::MoveTo, {point, {}, {}}}); }
void UIBezierPath::addLineToPoint(CGPoint point) {
    // Without a current point the line begins here.
    m_path.elements.push_back({m_path.elements.empty() ? Kind::MoveTo : Kind::LineTo, {point, {}, {}}});
}
void UIBezierPath::closePath() {
    if (!m_path.elements.empty()) m_path.elements.push_back({Kind::Close, {}});
}

void UIBezierPath::fill() const { CGContextFillPath(UIGraphicsGetCurrentContext(), m_path); }
void UIBezierPath::stroke() const {
    const CGContextRef context = UIGraphicsGetCurrentContext();
    CGContextSaveGState(context);
    CGContextSetLineWidth(context, m_lineWidth);
    CGContextStrokePath(context, m_path);
    CGContextRestoreGState(context);
}
