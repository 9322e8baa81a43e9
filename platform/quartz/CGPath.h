#pragma once

#include "platform/quartz/CGGeometry.h"

#include <vector>

// An outline in points, any thread: each MoveTo begins a part, Close goes back to where the part began. Filled by the
// winding rule, an open part as if it were closed. A coordinate that is no number makes the path paint nothing.
struct CGPathElement {
    enum class Kind { MoveTo, LineTo, CurveTo, Close } kind = Kind::MoveTo;
    CGPoint points[3]; // MoveTo and LineTo use the first; CurveTo two control points and the end
};

// Without elements it paints nothing.
struct CGPath {
    std::vector<CGPathElement> elements;
};
