#include "kit/quartz/PathCoverage.h"

#include "kit/quartz/geometry.h"
#include "kit/quartz/recently_used.h"

#include <algorithm>
#include <cmath>

namespace seat {

namespace {

constexpr int mostKeptPixels = 200; // wide or high
constexpr int rowsAtATime = 16;

struct Key {
    std::vector<CGPathElement> path;
    CGAffineTransform toPixels; // without whole pixels

    friend bool operator==(const Key& a, const Key& b) {
        const auto same = [](const CGPathElement& x, const CGPathElement& y) {
            return x.kind == y.kind && std::equal(x.points, x.points + 3, y.points);
        };
        return a.toPixels == b.toPixels && std::equal(a.path.begin(), a.path.end(), b.path.begin(), b.path.end(), same);
    }
};

// Those that the outline may touch.
PixelRect pixelsOf(const Outline& outline) {
    double left = 1e6, top = 1e6, right = -1e6, bottom = -1e6;
    for (const CGPoint& corner : outline) {
        left = std::min(left, corner.x);
        top = std::min(top, corner.y);
        right = std::max(right, corner.x);
        bottom = std::max(bottom, corner.y);
    }
    const auto edge = [](double value) { return static_cast<int>(std::clamp(value, -1e6, 1e6)); };
    return {edge(std::floor(left)), edge(std::floor(top)), edge(std::ceil(right)), edge(std::ceil(bottom))};
}

// A few rows at a time: a shape as large as a window needs much room for its cells, and little for its runs.
CoveredRuns covered(const Outline& outline, const PixelRect& pixels) {
    auto runs = std::make_shared<std::vector<CoveredRun>>();
    for (int top = pixels.top; top < pixels.bottom; top += rowsAtATime) {
        Coverage coverage({pixels.left, top, pixels.right, std::min(top + rowsAtATime, pixels.bottom)});
        coverage.add(outline);
        const CoveredRuns found = coverage.runs();
        runs->insert(runs->end(), found->begin(), found->end());
    }
    return runs;
}

// nullptr: not to be had without `clip`, because the path is too large, or not at all.
CoveredRuns wholeCoverage(const Key& key) {
    const auto outline = convexOutline({key.path}, key.toPixels);
    if (!outline) return nullptr;
    const PixelRect pixels = pixelsOf(*outline);
    if (pixels.width() > mostKeptPixels || pixels.height() > mostKeptPixels) return nullptr;
    return covered(*outline, pixels);
}

} // namespace

std::optional<PathCoverage> convexPathCoverage(const CGPath& path, const CGAffineTransform& toPixels,
                                               const PixelRect& clip) {
    const CGPoint whole{std::floor(toPixels.tx), std::floor(toPixels.ty)};
    if (std::abs(whole.x) > 1e6 || std::abs(whole.y) > 1e6) return {};
    static thread_local RecentlyUsed<Key, CoveredRuns, 16> known;
    const Key key{path.elements,
                  CGAffineTransformConcat(toPixels, CGAffineTransformMakeTranslation(-whole.x, -whole.y))};
    if (const CoveredRuns& runs = known.get(key, [&key] { return wholeCoverage(key); }))
        return PathCoverage{runs, static_cast<int>(whole.x), static_cast<int>(whole.y)};
    const auto outline = convexOutline(path, toPixels);
    if (!outline) return {};
    return PathCoverage{covered(*outline, pixelsOf(*outline).intersected(clip)), 0, 0};
}

} // namespace seat
