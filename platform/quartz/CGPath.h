#pragma once

#include "platform/quartz/CGGeometry.h"

#include <vector>

struct CGPathElement {
    enum class Kind { MoveTo, LineTo, CurveTo, Close } kind = Kind::MoveTo;
    CGPoint points[3]; // MoveTo and LineTo use the first; CurveTo two control points and the end
};

struct CGPath {
    std::vector<CGPathElement> elements;
};
