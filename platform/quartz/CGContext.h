#pragma once

#include "platform/quartz/CGAffineTransform.h"
#include "platform/quartz/CGColor.h"
#include "platform/quartz/CGImage.h"
#include "platform/quartz/CGPath.h"

// A place to draw, in points. A context belongs to the thread that draws in it; nil is tolerated everywhere. A fresh
// one fills with opaque black. Blending is source-over.
class CGContext; // opaque
using CGContextRef = CGContext*;

void CGContextSaveGState(CGContextRef context);
void CGContextRestoreGState(CGContextRef context);
void CGContextConcatCTM(CGContextRef context, CGAffineTransform transform);
void CGContextTranslateCTM(CGContextRef context, double tx, double ty);
void CGContextScaleCTM(CGContextRef context, double sx, double sy);
void CGContextClipToRect(CGContextRef context, CGRect rect);
void CGContextSetAlpha(CGContextRef context, double alpha);

void CGContextSetFillColorWithColor(CGContextRef context, const CGColorRef& color);
void CGContextSetRGBFillColor(CGContextRef context, double red, double green, double blue, double alpha);
void CGContextSetGrayFillColor(CGContextRef context, double gray, double alpha);
void CGContextSetStrokeColorWithColor(CGContextRef context, const CGColorRef& color);
void CGContextSetLineWidth(CGContextRef context, double width);

// Edges that fall between pixels are anti-aliased; a colour or rectangle that is no number paints nothing.
void CGContextFillRect(CGContextRef context, CGRect rect);
void CGContextFillPath(CGContextRef context, const CGPath& path);
void CGContextStrokePath(CGContextRef context, const CGPath& path);
void CGContextDrawImage(CGContextRef context, CGRect rect, const CGImageRef& image);
