#pragma once

// Where the rows, headers and footers of a table stand. Pure arithmetic over section sizes: any question takes a
// search, never a walk over the rows, which are all of one height unless they are measured.

#include "platform/quartz/CGGeometry.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace seat {

struct TableRow {
    long section = 0;
    long row = 0;
    friend auto operator<=>(const TableRow&, const TableRow&) = default;
};

struct TableSection {
    long rows = 0;
    std::string header; // empty: none
    std::string footer;
};

class TableGeometry {
public:
    // The height of a text wrapped at a width.
    using Measure = std::function<double(const std::string& text, double width)>;

    void setSections(std::vector<TableSection> sections);
    // The height of a row in a card of a width.
    using MeasureRow = std::function<double(TableRow row, double width)>;
    // To be called again when the sections, the width or what stands above them change; until then all is at 0. Without
    // `measureRow` rows are as high as a line of text wants them.
    void layOut(double width, bool isGrouped, const Measure& measure, const MeasureRow& measureRow = {});

    const std::vector<TableSection>& sections() const { return m_sections; }
    bool contains(TableRow row) const;
    double contentHeight() const { return m_height; }

    // In the table's content.
    CGRect rowRect(TableRow row) const;
    CGRect headerRect(long section) const; // of the text; empty without one
    CGRect footerRect(long section) const;
    // Between the edges of the cards.
    double cardLeft() const { return m_left; }
    double cardWidth() const { return m_cardWidth; }

    std::optional<TableRow> rowAt(double y) const;
    // The first and one past the last section that reach into a stretch.
    std::pair<long, long> sectionsIn(double top, double bottom) const;
    // The first and one past the last row of a section that do.
    std::pair<long, long> rowsIn(long section, double top, double bottom) const;
    // The next row in reading order, over empty sections too; nothing at the end.
    std::optional<TableRow> neighbour(TableRow row, bool forward) const;

private:
    struct Place {
        double top = 0;       // of the section with all that belongs to it
        double headerTop = 0; // of the header's text
        double headerHeight = 0;
        double rowsTop = 0;
        double footerTop = 0;
        double footerHeight = 0;
        double bottom = 0;
        std::vector<double> rowBottoms = {}; // below rowsTop; empty: all rows are of one height
    };

    double topOf(TableRow row) const;
    double heightOf(TableRow row) const;
    long rowAtDistance(long section, double distance) const; // below rowsTop; may be beyond the rows

    std::vector<TableSection> m_sections;
    std::vector<Place> m_places;
    double m_rowHeight = 0;
    double m_left = 0;
    double m_cardWidth = 0;
    double m_height = 0;
};

} // namespace seat
