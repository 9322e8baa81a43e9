#pragma once

// The pixels of a linear gradient, row by row.

#include "kit/quartz/pixels.h"
#include "platform/quartz/CGGeometry.h"

#include <array>
#include <span>
#include <vector>

namespace seat {

class GradientRows final : public PixelRows {
public:
    // In pixels. Colours evenly spaced from `start` to `end`, beyond them the end colours; nil is transparent. For the
    // columns of `pixels`.
    GradientRows(CGPoint start, CGPoint end, std::span<const CGColorRef> colors, double alpha, const PixelRect& pixels);

    const std::uint32_t* at(int x, int y) override;

private:
    using Premultiplied = std::array<double, 4>; // blue, green, red, alpha, from 0 to 255, and a half

    std::uint32_t colorAt(double part) const;

    std::vector<Premultiplied> m_colors;
    PixelRect m_pixels;
    CGPoint m_start;
    CGPoint m_perPixel; // how much further on the way from start to end
    std::vector<std::uint32_t> m_row;
    int m_madeFor; // the row that m_row holds
};

} // namespace seat
