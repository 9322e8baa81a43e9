#pragma once

#include "platform/quartz/CGPath.h"
#include "platform/runtime/NSObject.h"

// Bits; several may be joined.
enum UIRectCorner : unsigned {
    UIRectCornerTopLeft = 1,
    UIRectCornerTopRight = 2,
    UIRectCornerBottomLeft = 4,
    UIRectCornerBottomRight = 8,
    UIRectCornerAllCorners = 15,
};

// An outline to fill or stroke, in points. Not safe for concurrent change; drawing is for the thread whose context is
// current.
class UIBezierPath final : public NSObject {
    NS_CLASS(UIBezierPath)

    // Without elements.
    static std::shared_ptr<UIBezierPath> bezierPath();
    // `corners` is a mask of UIRectCorner, the others are square; radii beyond half the rectangle are cut to it. A
    // rectangle without area gives a path that fills nothing.
    static std::shared_ptr<UIBezierPath>
    bezierPathWithRoundedRect_byRoundingCorners_cornerRadii(CGRect rect, unsigned corners, CGSize radii);
    // The ellipse that touches all four edges.
    static std::shared_ptr<UIBezierPath> bezierPathWithOvalInRect(CGRect rect);

    // Begins a part; a line without a part begins one; closing goes back to where the part began.
    void moveToPoint(CGPoint point);
    void addLineToPoint(CGPoint point);
    void closePath();
    // Points; 1 by default. A width that is not above 0 strokes nothing.
    double lineWidth() const { return m_lineWidth; }
    void setLineWidth(double width) { m_lineWidth = width; }

    // As it is now; the reference holds while the object lives.
    const struct CGPath& CGPath() const { return m_path; }
    // Into the thread's current context, with its colours, edges anti-aliased; nothing without one.
    void fill() const;
    void stroke() const;

private:
    struct CGPath m_path;
    double m_lineWidth = 1;
};
