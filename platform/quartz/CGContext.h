#pragma once

#include "platform/quartz/CGAffineTransform.h"
#include "platform/quartz/CGColor.h"
#include "platform/quartz/CGImage.h"
#include "platform/quartz/CGPath.h"

// A place to draw, in points, y downward. A context belongs to the thread that draws in it; nil is tolerated
// everywhere. A fresh one fills with opaque black. Blending is source-over.
class CGContext; // opaque
using CGContextRef = CGContext*;

// The colour that fills from now on. nil paints nothing.
void CGContextSetFillColorWithColor(CGContextRef context, const CGColorRef& color);
void CGContextSetRGBFillColor(CGContextRef context, double red, double green, double blue, double alpha);
void CGContextSetGrayFillColor(CGContextRef context, double gray, double alpha);

// Edges that fall between pixels are anti-aliased; a colour or rectangle that is no number paints nothing.
void CGContextFillRect(CGContextRef context, CGRect rect);
