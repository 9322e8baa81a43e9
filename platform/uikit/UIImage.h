#pragma once

#include "platform/quartz/CGContext.h"
#include "platform/runtime/NSObject.h"

#include <memory>

// An immutable picture: pixels and their scale. Any thread.
class UIImage final : public NSObject {
    NS_CLASS(UIImage)

    // nil for a nil picture. A scale that is no number, or not above 0, counts as 1.
    static std::shared_ptr<UIImage> imageWithCGImage_scale(CGImageRef image, double scale);

    CGSize size() const;                     // points
    double scale() const { return m_scale; } // pixels a point
    const CGImageRef& CGImage() const { return m_image; }

private:
    CGImageRef m_image;
    double m_scale = 1;
};

// The stack of contexts of the calling thread: what was begun last is current, until it is ended. Scale 0 means the
// main screen's. A size that is zero, negative, no number or beyond 16384 pixels an edge opens a context without
// pixels: drawing does nothing and no image comes of it (nil). An opaque one begins black, another one clear; sizes are
// in points, and the picture has as many whole pixels as hold them.
void UIGraphicsBeginImageContextWithOptions(CGSize size, bool opaque, double scale);
// nil without one; valid until it is ended.
CGContextRef UIGraphicsGetCurrentContext();
// What was drawn so far; the context may go on. nil without a context of an image.
std::shared_ptr<UIImage> UIGraphicsGetImageFromCurrentImageContext();
// Nothing without one.
void UIGraphicsEndImageContext();
