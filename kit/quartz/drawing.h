#pragma once

// The rest of what a context can do, for the seat's own drawing. As in platform/quartz/CGContext.h: nil is tolerated,
// and what is no number paints nothing.

#include "platform/quartz/CGContext.h"

// Saved states nest; one more restore than saves does nothing.
void CGContextSaveGState(CGContextRef context);
void CGContextRestoreGState(CGContextRef context);
// What is drawn from now on is transformed first, then placed as before.
void CGContextConcatCTM(CGContextRef context, CGAffineTransform transform);
void CGContextTranslateCTM(CGContextRef context, double tx, double ty);
void CGContextScaleCTM(CGContextRef context, double sx, double sy);
// Clips only ever shrink, until the state that was saved before comes back.
void CGContextClipToRect(CGContextRef context, CGRect rect);
// 0 to 1, for each thing that is drawn by itself.
void CGContextSetAlpha(CGContextRef context, double alpha);

void CGContextSetStrokeColorWithColor(CGContextRef context, const CGColorRef& color);
void CGContextSetLineWidth(CGContextRef context, double width);
void CGContextFillPath(CGContextRef context, const CGPath& path);
void CGContextStrokePath(CGContextRef context, const CGPath& path);
// Stretched over the rectangle.
void CGContextDrawImage(CGContextRef context, CGRect rect, const CGImageRef& image);
