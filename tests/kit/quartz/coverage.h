#pragma once

// Covered pixels, to be looked at one by one.

#include "kit/quartz/Coverage.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace test {

struct CoveredPixels {
    CoveredPixels(const std::vector<seat::CoveredRun>& runs, int wide, int high, int dx = 0, int dy = 0)
        : width(wide), height(high), parts(static_cast<std::size_t>(wide) * static_cast<std::size_t>(high)) {
        for (const auto& each : runs) {
            const auto run = each.translated(dx, dy, {0, 0, wide, high});
            for (int x = run.x; x < run.x + run.count; ++x)
                parts[static_cast<std::size_t>(run.y) * static_cast<std::size_t>(wide) + static_cast<std::size_t>(x)] +=
                    static_cast<double>(run.coverage) / seat::CoveredRun::whole;
        }
    }
    double at(int x, int y) const {
        return parts[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x)];
    }
    double sum() const {
        double all = 0;
        for (const double part : parts) all += part;
        return all;
    }

    int width;
    int height;
    std::vector<double> parts;
};

// The area of a disc inside a pixel, by thin slices.
inline double discInPixel(CGPoint middle, double radius, int x, int y) {
    constexpr int slices = 400;
    double area = 0;
    for (int i = 0; i < slices; ++i) {
        const double dy = y + (i + 0.5) / slices - middle.y;
        if (std::abs(dy) >= radius) continue;
        const double half = std::sqrt(radius * radius - dy * dy);
        const double left = std::max<double>(x, middle.x - half);
        const double right = std::min<double>(x + 1, middle.x + half);
        area += std::max(right - left, 0.0) / slices;
    }
    return area;
}

} // namespace test
