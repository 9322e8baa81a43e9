#include "kit/quartz/GradientRows.h"

#include <algorithm>
#include <cmath>

namespace seat {

namespace {
constexpr double nothing = 0.5; // so that cutting a component rounds it
}

GradientRows::GradientRows(CGPoint start, CGPoint end, std::span<const CGColorRef> colors, double alpha,
                           const PixelRect& pixels)
    : m_pixels(pixels), m_start(start), m_row(static_cast<std::size_t>(std::max(pixels.width(), 0))),
      m_madeFor(pixels.top - 1) {
    for (const CGColorRef& color : colors) {
        Premultiplied& made = m_colors.emplace_back(Premultiplied{nothing, nothing, nothing, nothing});
        if (!color || std::isnan(color->red + color->green + color->blue + color->alpha + alpha)) continue;
        const auto unit = [](double component) { return std::clamp(component, 0.0, 1.0); };
        const double weight = 255 * unit(unit(color->alpha) * alpha);
        made = {unit(color->blue) * weight + nothing, unit(color->green) * weight + nothing,
                unit(color->red) * weight + nothing, weight + nothing};
    }
    const CGPoint way{end.x - start.x, end.y - start.y};
    const double squared = way.x * way.x + way.y * way.y;
    if (squared > 0 && std::isfinite(squared)) m_perPixel = {way.x / squared, way.y / squared};
}

std::uint32_t GradientRows::colorAt(double part) const {
    const double last = static_cast<double>(m_colors.size() - 1);
    const double at = std::clamp(part, 0.0, 1.0) * last;
    const auto index = std::min(static_cast<std::size_t>(at), m_colors.size() - 1);
    const Premultiplied& from = m_colors[index];
    const Premultiplied& to = m_colors[std::min(index + 1, m_colors.size() - 1)];
    const double share = at - static_cast<double>(index);
    std::uint32_t pixel = 0;
    for (std::size_t i = 0; i < from.size(); ++i)
        pixel |= static_cast<std::uint32_t>(from[i] + (to[i] - from[i]) * share) << (8 * i);
    return pixel;
}

const std::uint32_t* GradientRows::at(int x, int y) {
    const bool rowsAreAlike = m_perPixel.y == 0;
    if (m_madeFor < m_pixels.top || (y != m_madeFor && !rowsAreAlike)) {
        const double above = (y + 0.5 - m_start.y) * m_perPixel.y;
        for (std::size_t i = 0; i < m_row.size(); ++i)
            m_row[i] = colorAt(above + (m_pixels.left + static_cast<double>(i) + 0.5 - m_start.x) * m_perPixel.x);
        m_madeFor = y;
    }
    return m_row.data() + (x - m_pixels.left);
}

} // namespace seat
