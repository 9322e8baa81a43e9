#pragma once

#include "platform/quartz/CGPath.h"
#include "platform/runtime/NSObject.h"

enum UIRectCorner : unsigned {
    UIRectCornerTopLeft = 1,
    UIRectCornerTopRight = 2,
    UIRectCornerBottomLeft = 4,
    UIRectCornerBottomRight = 8,
    UIRectCornerAllCorners = 15,
};

class UIBezierPath final : public NSObject {
    NS_CLASS(UIBezierPath)

    static std::shared_ptr<UIBezierPath> bezierPath();
    // `corners` is a mask of UIRectCorner; radii beyond half the rectangle are cut to it.
    static std::shared_ptr<UIBezierPath>
    bezierPathWithRoundedRect_byRoundingCorners_cornerRadii(CGRect rect, unsigned corners, CGSize radii);
    static std::shared_ptr<UIBezierPath> bezierPathWithOvalInRect(CGRect rect);

    void moveToPoint(CGPoint point);
    void addLineToPoint(CGPoint point);
    void closePath();
    double lineWidth() const { return m_lineWidth; }
    void setLineWidth(double width) { m_lineWidth = width; }

    const struct CGPath& CGPath() const { return m_path; }
    // Into the thread's current context, with its colours; nothing without one.
    void fill() const;
    void stroke() const;

private:
    struct CGPath m_path;
    double m_lineWidth = 1;
};
