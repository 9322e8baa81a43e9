#pragma once

// What a rounded rectangle, or a rounded frame, covers of the pixels where its edge is soft. The same few discs and
// corners are painted again and again, so what was found is kept.

#include "kit/quartz/Coverage.h"

namespace seat {

struct RoundedShape {
    double left = 0;
    double top = 0;
    double right = 0;
    double bottom = 0;
    double radius = 0;
    double inset = 0; // what is filled is smaller by so much all round
    double frame = 0; // above 0: only so much inside the edge is filled

    friend bool operator==(const RoundedShape&, const RoundedShape&) = default;
};

// The runs are counted from the corner of `pixels`.
CoveredRuns roundedCoverage(const RoundedShape& shape, const PixelRect& pixels);

} // namespace seat
