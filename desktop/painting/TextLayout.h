#pragma once

// Text, shaped and broken into lines, in device pixels.

#include "kit/seat.h"

#include <QGlyphRun>

#include <memory>
#include <vector>

namespace seat {

struct TextLayout {
    struct Piece {
        QGlyphRun glyphs; // on a baseline at 0
        std::size_t run = 0;
    };
    struct Line {
        std::vector<Piece> pieces;
        double width = 0;
        double baseline = 0; // whole pixels from the top of the block
    };
    std::vector<Line> lines;
    double width = 0;
    double height = 0; // whole pixels
};

// `maxWidth` in pixels. What was laid out before on this thread comes from memory.
std::shared_ptr<const TextLayout> textLayout(std::span<const TextRun> runs, double maxWidth, int lines, double scale);

} // namespace seat
