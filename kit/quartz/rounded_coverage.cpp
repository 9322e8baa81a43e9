#include "kit/quartz/rounded_coverage.h"

#include "kit/quartz/recently_used.h"

#include <algorithm>

namespace seat {

namespace {

struct Key {
    RoundedShape shape;
    int width = 0;
    int height = 0;
    friend bool operator==(const Key&, const Key&) = default;
};

// What lies far beyond the pixels is all the same to them: the corners of a long bar are those of a short one.
RoundedShape seenFrom(RoundedShape shape, const PixelRect& pixels) {
    const double far = shape.radius + shape.inset + shape.frame + 2;
    shape.left = std::max(shape.left - pixels.left, -far);
    shape.top = std::max(shape.top - pixels.top, -far);
    shape.right = std::min(shape.right - pixels.left, pixels.width() + far);
    shape.bottom = std::min(shape.bottom - pixels.top, pixels.height() + far);
    return shape;
}

Outline shrunk(const RoundedShape& shape, double by) {
    return roundedOutline(shape.left + by, shape.top + by, shape.right - by, shape.bottom - by, shape.radius - by);
}

CoveredRuns find(const Key& key) {
    Coverage coverage({0, 0, key.width, key.height});
    coverage.add(shrunk(key.shape, key.shape.inset));
    if (key.shape.frame > 0) {
        Outline inside = shrunk(key.shape, key.shape.frame);
        std::reverse(inside.begin(), inside.end());
        coverage.add(inside);
    }
    return coverage.runs();
}

} // namespace

CoveredRuns roundedCoverage(const RoundedShape& shape, const PixelRect& pixels) {
    static thread_local RecentlyUsed<Key, CoveredRuns, 48> known;
    const Key key{seenFrom(shape, pixels), pixels.width(), pixels.height()};
    return known.get(key, [&key] { return find(key); });
}

} // namespace seat
