#pragma once

// How much of each pixel a shape covers: the area of what lies inside, added up from its edges without sampling.

#include "kit/quartz/outline.h"
#include "kit/quartz/pixels.h"

#include <memory>
#include <vector>

namespace seat {

using CoveredRuns = std::shared_ptr<const std::vector<CoveredRun>>;

class Coverage {
public:
    // Of these pixels alone.
    explicit Coverage(const PixelRect& pixels);

    // Outlines that run the same way round must not overlap; one that runs the other way takes out what it encloses.
    void add(const Outline& outline);

    // From the top and from the left; what is not covered is left out.
    CoveredRuns runs() const;

private:
    struct Row {
        int first = 0; // the cells that edges have touched
        int end = 0;
    };

    void addEdge(CGPoint from, CGPoint to);
    void addInColumns(CGPoint from, CGPoint to, double slope);
    void addInRow(int y, double fromX, double toX, double height);
    double* touch(int y, int first, int end);

    PixelRect m_pixels;
    // In each cell, by how much more is covered there than one to the left; two cells more a row than it has pixels.
    std::vector<double> m_cells;
    std::vector<Row> m_rows;
};

} // namespace seat
