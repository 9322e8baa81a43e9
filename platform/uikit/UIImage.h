#pragma once

#include "platform/quartz/CGContext.h"
#include "platform/runtime/NSObject.h"

#include <memory>

// An immutable picture: pixels and their scale. Any thread.
class UIImage final : public NSObject {
    NS_CLASS(UIImage)

    static std::shared_ptr<UIImage> imageWithCGImage_scale(CGImageRef image, double scale);

    CGSize size() const; // points
    double scale() const { return m_scale; }
    const CGImageRef& CGImage() const { return m_image; }

private:
    CGImageRef m_image;
    double m_scale = 1;
};

// The stack of contexts of the calling thread. Scale 0 means the main screen's. A size that is zero, negative, no
// number or beyond 16384 pixels an edge opens a context without pixels: drawing does nothing and no image comes of it
// (nil).
void UIGraphicsBeginImageContextWithOptions(CGSize size, bool opaque, double scale);
CGContextRef UIGraphicsGetCurrentContext();
std::shared_ptr<UIImage> UIGraphicsGetImageFromCurrentImageContext();
void UIGraphicsEndImageContext();
