#pragma once

// Pixels of a target, and the plain loops that fill and blend them: one rounding, at most half a step off the exact
// source-over of what is there.

#include "platform/quartz/CGColor.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>

namespace seat {

// Premultiplied, one word each: alpha in the top byte, then red, green, blue. Non-owning.
struct PixelTarget {
    std::uint32_t* pixels = nullptr;
    int width = 0;
    int height = 0;
    std::ptrdiff_t bytesPerLine = 0;

    std::uint32_t* row(int y) const {
        return reinterpret_cast<std::uint32_t*>(reinterpret_cast<std::byte*>(pixels) + y * bytesPerLine);
    }
};

// Whole pixels; right and bottom are outside.
struct PixelRect {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;

    bool isEmpty() const { return left >= right || top >= bottom; }
    int width() const { return right - left; }
    int height() const { return bottom - top; }
    bool contains(const PixelRect& other) const {
        return left <= other.left && top <= other.top && right >= other.right && bottom >= other.bottom;
    }
    PixelRect intersected(const PixelRect& other) const {
        return {std::max(left, other.left), std::max(top, other.top), std::min(right, other.right),
                std::min(bottom, other.bottom)};
    }
    PixelRect translated(int x, int y) const { return {left + x, top + y, right + x, bottom + y}; }
    friend bool operator==(const PixelRect&, const PixelRect&) = default;
};

// A stretch of pixels in one row, all covered alike.
struct CoveredRun {
    static constexpr std::uint32_t whole = 1U << 16;

    int x = 0;
    int y = 0;
    int count = 0;
    std::uint32_t coverage = 0; // of `whole`

    // In place, of what lies in `clip`; empty when nothing does.
    CoveredRun translated(int dx, int dy, const PixelRect& clip) const {
        const int left = std::max(x + dx, clip.left);
        const int right = std::min(x + dx + count, clip.right);
        const bool isSeen = y + dy >= clip.top && y + dy < clip.bottom;
        return {left, y + dy, isSeen ? right - left : 0, coverage};
    }
};

// One colour, made ready to be laid over pixels.
class SolidSource {
public:
    // Components beyond 0 to 1 are cut to it; one that is no number paints nothing.
    explicit SolidSource(const CGColor& color, double coverage = 1);

    bool paintsNothing() const { return m_keep == oneInKeep; }
    void paint(const PixelTarget& target, const PixelRect& rect) const;
    // The runs moved by (dx, dy), as far as they lie in `clip`.
    void paint(const PixelTarget& target, std::span<const CoveredRun> runs, int dx, int dy,
               const PixelRect& clip) const;

private:
    static constexpr std::uint32_t oneInKeep = 1U << 24;

    std::uint32_t m_keep = oneInKeep; // what is kept of the pixel below
    std::uint32_t m_add[4] = {};      // blue, green, red, alpha, with the rounding
    std::uint32_t m_word = 0;         // the colour alone
};

// Pixels that are made or kept somewhere, to be laid over others.
class PixelRows {
public:
    virtual ~PixelRows() = default;
    // Those of row `y` from column `x` on.
    virtual const std::uint32_t* at(int x, int y) = 0;
};

// Lays `source` (premultiplied), weakened by `opacity` from 0 to 1, over the pixels.
void blendRow(std::uint32_t* pixels, const std::uint32_t* source, std::size_t count, double opacity);

} // namespace seat
