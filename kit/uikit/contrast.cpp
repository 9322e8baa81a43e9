#include "kit/uikit/contrast.h"

#include <algorithm>
#include <cmath>

namespace seat {
namespace {

constexpr int contrastSteps = 64; // from a colour to black or white

double linearOf(double component) {
    const double c = std::clamp(component, 0.0, 1.0);
    return c <= 0.04045 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
}

double luminanceOf(const CGColor& color) {
    return 0.2126 * linearOf(color.red) + 0.7152 * linearOf(color.green) + 0.0722 * linearOf(color.blue);
}

double leastContrast(const CGColor& color, std::span<const CGColor> grounds) {
    double least = 21;
    for (const CGColor& ground : grounds) least = std::min(least, contrast(color, ground));
    return least;
}

} // namespace

double contrast(const CGColor& a, const CGColor& b) {
    const auto [darker, lighter] = std::minmax({luminanceOf(a), luminanceOf(b)});
    return (lighter + 0.05) / (darker + 0.05);
}

CGColor blended(const CGColor& over, double alpha, const CGColor& under) {
    const auto mix = [alpha](double a, double b) { return a * alpha + b * (1 - alpha); };
    return {mix(over.red, under.red), mix(over.green, under.green), mix(over.blue, under.blue), 1};
}

CGColor readable(const CGColor& wanted, std::span<const CGColor> grounds, double ratio) {
    const CGColor black{0, 0, 0, 1};
    const CGColor white{1, 1, 1, 1};
    const CGColor& end = leastContrast(black, grounds) >= leastContrast(white, grounds) ? black : white;
    for (int i = 0; i <= contrastSteps; ++i) {
        const CGColor color = blended(end, static_cast<double>(i) / contrastSteps, wanted);
        if (leastContrast(color, grounds) >= ratio) return color;
    }
    return end;
}

} // namespace seat
