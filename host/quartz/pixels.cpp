#include "host/quartz/pixels.h"

#include <cmath>
#include <cstring>

namespace host {

namespace {

double unit(double component) { return std::clamp(component, 0.0, 1.0); }

} // namespace

// 24 bits of fraction: 255 of them and the rounding still fit a word.
SolidSource::SolidSource(const CGColor& color, double coverage) {
    if (std::isnan(color.red + color.green + color.blue + color.alpha + coverage)) return;
    const double alpha = unit(color.alpha) * unit(coverage);
    if (alpha <= 0) return;
    constexpr double one = oneInKeep;
    m_keep = static_cast<std::uint32_t>(std::lround((1 - alpha) * one));
    const double components[] = {unit(color.blue), unit(color.green), unit(color.red), 1};
    for (int i = 0; i < 4; ++i) {
        m_add[i] = static_cast<std::uint32_t>(std::llround(components[i] * alpha * 255 * one)) + (1U << 23);
        m_word |= (m_add[i] >> 24) << (8 * i);
    }
}

void SolidSource::paint(const PixelTarget& target, const PixelRect& rect) const {
    if (rect.isEmpty() || paintsNothing()) return;
    const auto width = static_cast<std::size_t>(rect.width());
    if (m_keep == 0) {
        for (int y = rect.top; y < rect.bottom; ++y) std::fill_n(target.row(y) + rect.left, width, m_word);
        return;
    }
    const std::uint32_t keep = m_keep;
    const std::uint32_t blue = m_add[0], green = m_add[1], red = m_add[2], alpha = m_add[3];
    for (int y = rect.top; y < rect.bottom; ++y) {
        std::uint32_t* const pixels = target.row(y) + rect.left;
        for (std::size_t x = 0; x < width; ++x) {
            const std::uint32_t below = pixels[x];
            const std::uint32_t b = (below & 255) * keep + blue;
            const std::uint32_t g = ((below >> 8) & 255) * keep + green;
            const std::uint32_t r = ((below >> 16) & 255) * keep + red;
            const std::uint32_t a = (below >> 24) * keep + alpha;
            pixels[x] = (a & 0xff000000U) | ((r >> 8) & 0xff0000U) | ((g >> 16) & 0xff00U) | (b >> 24);
        }
    }
}

namespace {

// 16 bits of fraction: the sum of two products and the rounding still fit a word.
void blendWeakened(std::uint32_t* pixels, const std::uint32_t* source, std::size_t count, std::uint32_t opacity) {
    for (std::size_t x = 0; x < count; ++x) {
        const std::uint32_t above = source[x];
        const std::uint32_t below = pixels[x];
        const std::uint32_t keep = 0x10000U - ((above >> 24) * opacity + 127) / 255;
        const std::uint32_t b = (above & 255) * opacity + (below & 255) * keep + 0x8000U;
        const std::uint32_t g = ((above >> 8) & 255) * opacity + ((below >> 8) & 255) * keep + 0x8000U;
        const std::uint32_t r = ((above >> 16) & 255) * opacity + ((below >> 16) & 255) * keep + 0x8000U;
        const std::uint32_t a = (above >> 24) * opacity + (below >> 24) * keep + 0x8000U;
        pixels[x] = ((a << 8) & 0xff000000U) | (r & 0xff0000U) | ((g >> 8) & 0xff00U) | (b >> 16);
    }
}

} // namespace

void blendRow(std::uint32_t* pixels, const std::uint32_t* source, std::size_t count, double opacity) {
    const auto weight = static_cast<std::uint32_t>(std::lround(unit(opacity) * 0x10000));
    if (weight == 0) return;
    const auto isOpaque = [](std::uint32_t pixel) { return pixel >= 0xff000000U; };
    if (weight == 0x10000 && std::all_of(source, source + count, isOpaque))
        std::memcpy(pixels, source, count * sizeof *pixels);
    else
        blendWeakened(pixels, source, count, weight);
}

} // namespace host
