#include "kit/quartz/pixels.h"

#include <cmath>
#include <cstring>

// Compiled twice: for any processor, and for those that multiply eight words at once; chosen when the library is
// loaded, which the sanitizers do not live to see.
#if defined(__x86_64__) && defined(__gnu_linux__) && !defined(JOYVANE_SANITIZED)
#define JOYVANE_WIDE_LOOP [[gnu::target_clones("avx2", "default")]]
#else
#define JOYVANE_WIDE_LOOP
#endif

namespace seat {

namespace {

double unit(double component) { return std::clamp(component, 0.0, 1.0); }

constexpr std::uint32_t halfStep = 1U << 23; // where a step has 24 bits of fraction

// All rows in one call: tiles are narrow.
JOYVANE_WIDE_LOOP void fill(const PixelTarget& target, const PixelRect& rect, std::uint32_t word) {
    const auto width = static_cast<std::size_t>(rect.width());
    for (int y = rect.top; y < rect.bottom; ++y) {
        std::uint32_t* const pixels = target.row(y) + rect.left;
        for (std::size_t x = 0; x < width; ++x) pixels[x] = word;
    }
}

// 24 bits of fraction: 255 of them and the rounding still fit a word.
inline std::uint32_t laidOver(std::uint32_t below, std::uint32_t keep, const std::uint32_t* add) {
    const std::uint32_t b = (below & 255) * keep + add[0];
    const std::uint32_t g = ((below >> 8) & 255) * keep + add[1];
    const std::uint32_t r = ((below >> 16) & 255) * keep + add[2];
    const std::uint32_t a = (below >> 24) * keep + add[3];
    return (a & 0xff000000U) | ((r >> 8) & 0xff0000U) | ((g >> 16) & 0xff00U) | (b >> 24);
}

// The same for many.
JOYVANE_WIDE_LOOP void layOver(std::uint32_t* pixels, std::size_t count, std::uint32_t keep, const std::uint32_t* add) {
    const std::uint32_t blue = add[0], green = add[1], red = add[2], alpha = add[3];
    for (std::size_t x = 0; x < count; ++x) {
        const std::uint32_t below = pixels[x];
        const std::uint32_t b = (below & 255) * keep + blue;
        const std::uint32_t g = ((below >> 8) & 255) * keep + green;
        const std::uint32_t r = ((below >> 16) & 255) * keep + red;
        const std::uint32_t a = (below >> 24) * keep + alpha;
        pixels[x] = (a & 0xff000000U) | ((r >> 8) & 0xff0000U) | ((g >> 16) & 0xff00U) | (b >> 24);
    }
}

// 16 bits of fraction: the sum of two products and the rounding still fit a word. `coverPerAlpha`: how much one step of
// the source's alpha hides, with 24 bits of fraction.
JOYVANE_WIDE_LOOP void blendWeakened(std::uint32_t* pixels, const std::uint32_t* source, std::size_t count,
                                     std::uint32_t opacity, std::uint32_t coverPerAlpha) {
    for (std::size_t x = 0; x < count; ++x) {
        const std::uint32_t above = source[x];
        const std::uint32_t below = pixels[x];
        const std::uint32_t keep = 0x10000U - (((above >> 24) * coverPerAlpha + 128) >> 8);
        const std::uint32_t b = (above & 255) * opacity + (below & 255) * keep + 0x8000U;
        const std::uint32_t g = ((above >> 8) & 255) * opacity + ((below >> 8) & 255) * keep + 0x8000U;
        const std::uint32_t r = ((above >> 16) & 255) * opacity + ((below >> 16) & 255) * keep + 0x8000U;
        const std::uint32_t a = (above >> 24) * opacity + (below >> 24) * keep + 0x8000U;
        pixels[x] = ((a << 8) & 0xff000000U) | (r & 0xff0000U) | ((g >> 8) & 0xff00U) | (b >> 16);
    }
}

} // namespace

SolidSource::SolidSource(const CGColor& color, double coverage) {
    if (std::isnan(color.red + color.green + color.blue + color.alpha + coverage)) return;
    const double alpha = unit(color.alpha) * unit(coverage);
    if (alpha <= 0) return;
    constexpr double one = oneInKeep;
    m_keep = static_cast<std::uint32_t>(std::lround((1 - alpha) * one));
    const double components[] = {unit(color.blue), unit(color.green), unit(color.red), 1};
    for (int i = 0; i < 4; ++i) {
        m_add[i] = static_cast<std::uint32_t>(std::llround(components[i] * alpha * 255 * one)) + halfStep;
        m_word |= (m_add[i] >> 24) << (8 * i);
    }
}

void SolidSource::paint(const PixelTarget& target, const PixelRect& rect) const {
    if (rect.isEmpty() || paintsNothing()) return;
    if (m_keep == 0) {
        fill(target, rect, m_word);
        return;
    }
    for (int y = rect.top; y < rect.bottom; ++y)
        layOver(target.row(y) + rect.left, static_cast<std::size_t>(rect.width()), m_keep, m_add);
}

void SolidSource::paint(const PixelTarget& target, std::span<const CoveredRun> runs, int dx, int dy,
                        const PixelRect& clip) const {
    if (paintsNothing()) return;
    for (const CoveredRun& each : runs) {
        const CoveredRun run = each.translated(dx, dy, clip);
        if (run.count <= 0) continue;
        std::uint32_t* const pixels = target.row(run.y) + run.x;
        const auto count = static_cast<std::size_t>(run.count);
        if (run.coverage == CoveredRun::whole && m_keep == 0) {
            std::fill_n(pixels, count, m_word);
            continue;
        }
        const auto weakened = [coverage = std::uint64_t{run.coverage}](std::uint32_t value) {
            return static_cast<std::uint32_t>(value * coverage >> 16);
        };
        const std::uint32_t keep = oneInKeep - weakened(oneInKeep - m_keep);
        std::uint32_t add[4];
        for (int i = 0; i < 4; ++i) add[i] = weakened(m_add[i] - halfStep) + halfStep;
        // Edges are single pixels, not worth a call.
        if (count == 1)
            *pixels = laidOver(*pixels, keep, add);
        else
            layOver(pixels, count, keep, add);
    }
}

void blendRow(std::uint32_t* pixels, const std::uint32_t* source, std::size_t count, double opacity) {
    const double part = unit(opacity);
    const auto weight = static_cast<std::uint32_t>(std::lround(part * 0x10000));
    if (weight == 0) return;
    const auto isOpaque = [](std::uint32_t pixel) { return pixel >= 0xff000000U; };
    if (weight == 0x10000 && std::all_of(source, source + count, isOpaque))
        std::memcpy(pixels, source, count * sizeof *pixels);
    else
        blendWeakened(pixels, source, count, weight, static_cast<std::uint32_t>(std::lround(part * 0x1000000 / 255)));
}

} // namespace seat
