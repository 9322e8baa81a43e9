#include "kit/tables/TableGeometry.h"

#include "kit/quartz/geometry.h"
#include "kit/uikit/appearance.h"

#include <algorithm>
#include <cmath>

namespace seat {
namespace {

using namespace appearance;

constexpr double topSpace = 20;     // above the first card without a header
constexpr double sectionSpace = 24; // between one section's last line and the next card
constexpr double headerSpace = 7;   // between a header and its card
constexpr double footerSpace = 7;   // between a card and its footer
constexpr double bottomSpace = 28;  // below the last
constexpr double plainHeaderPadding = 6;

// Whole numbers of four points stay whole pixels at quarter scales too, so that cards have crisp edges there.
double upToFour(double points) { return std::ceil(points / 4) * 4; }

} // namespace

void TableGeometry::setSections(std::vector<TableSection> sections) {
    m_sections = std::move(sections);
    m_places.assign(m_sections.size(), {});
}

void TableGeometry::layOut(double width, bool isGrouped, const Measure& measure, const MeasureRow& measureRow) {
    m_rowHeight = heightForText(rowHeight);
    const double margin = isGrouped ? sideMargin : 0;
    m_cardWidth = std::max(0.0, std::min(width - 2 * margin, readableWidth));
    m_left = std::floor((width - m_cardWidth) / 2);
    const double textWidth = std::max(0.0, m_cardWidth - 2 * sideMargin);

    m_places.assign(m_sections.size(), {});
    double y = 0;
    for (std::size_t i = 0; i < m_sections.size(); ++i) {
        const TableSection& section = m_sections[i];
        Place& place = m_places[i];
        place.top = y;
        if (isGrouped) y += i == 0 ? topSpace : sectionSpace;
        place.headerTop = y;
        if (!section.header.empty()) {
            place.headerTop += isGrouped ? 0 : plainHeaderPadding;
            place.headerHeight = std::ceil(measure(section.header, textWidth));
            y += upToFour(place.headerHeight + (isGrouped ? headerSpace : 2 * plainHeaderPadding));
            // What rounding added goes above the text, so that its distance to the card stays the same.
            if (isGrouped) place.headerTop = y - headerSpace - place.headerHeight;
        }
        place.rowsTop = y;
        double rowsHeight = static_cast<double>(section.rows) * m_rowHeight;
        if (measureRow) {
            rowsHeight = 0;
            for (long row = 0; row < section.rows; ++row)
                place.rowBottoms.push_back(rowsHeight += measureRow({static_cast<long>(i), row}, m_cardWidth));
        }
        y += rowsHeight;
        place.footerTop = y + footerSpace;
        if (!section.footer.empty()) {
            place.footerHeight = std::ceil(measure(section.footer, textWidth));
            y += upToFour(footerSpace + place.footerHeight);
        }
        place.bottom = y;
    }
    m_height = m_sections.empty() ? 0 : y + (isGrouped ? bottomSpace : 0);
}

bool TableGeometry::contains(TableRow row) const {
    return row.section >= 0 && row.section < static_cast<long>(m_sections.size()) && row.row >= 0 &&
           row.row < m_sections[static_cast<std::size_t>(row.section)].rows;
}

CGRect TableGeometry::rowRect(TableRow row) const {
    if (!contains(row)) return CGRectZero;
    return CGRectMake(m_left, topOf(row), m_cardWidth, heightOf(row));
}

double TableGeometry::topOf(TableRow row) const {
    const Place& place = m_places[static_cast<std::size_t>(row.section)];
    if (place.rowBottoms.empty()) return place.rowsTop + static_cast<double>(row.row) * m_rowHeight;
    return place.rowsTop + (row.row == 0 ? 0 : place.rowBottoms[static_cast<std::size_t>(row.row) - 1]);
}

double TableGeometry::heightOf(TableRow row) const {
    const Place& place = m_places[static_cast<std::size_t>(row.section)];
    if (place.rowBottoms.empty()) return m_rowHeight;
    return place.rowsTop + place.rowBottoms[static_cast<std::size_t>(row.row)] - topOf(row);
}

long TableGeometry::rowAtDistance(long section, double distance) const {
    const Place& place = m_places[static_cast<std::size_t>(section)];
    const double rows = static_cast<double>(m_sections[static_cast<std::size_t>(section)].rows);
    if (place.rowBottoms.empty())
        return m_rowHeight > 0 ? static_cast<long>(std::clamp(std::floor(distance / m_rowHeight), -1.0, rows)) : -1;
    if (distance < 0) return -1;
    return std::upper_bound(place.rowBottoms.begin(), place.rowBottoms.end(), distance) - place.rowBottoms.begin();
}

CGRect TableGeometry::headerRect(long section) const {
    const Place& place = m_places[static_cast<std::size_t>(section)];
    return CGRectMake(m_left + sideMargin, place.headerTop, std::max(0.0, m_cardWidth - 2 * sideMargin),
                      place.headerHeight);
}

CGRect TableGeometry::footerRect(long section) const {
    const Place& place = m_places[static_cast<std::size_t>(section)];
    return CGRectMake(m_left + sideMargin, place.footerTop, std::max(0.0, m_cardWidth - 2 * sideMargin),
                      place.footerHeight);
}

std::pair<long, long> TableGeometry::sectionsIn(double top, double bottom) const {
    const auto first =
        std::partition_point(m_places.begin(), m_places.end(), [&](const Place& place) { return place.bottom <= top; });
    const auto last =
        std::partition_point(first, m_places.end(), [&](const Place& place) { return place.top < bottom; });
    return {first - m_places.begin(), last - m_places.begin()};
}

std::pair<long, long> TableGeometry::rowsIn(long section, double top, double bottom) const {
    const Place& place = m_places[static_cast<std::size_t>(section)];
    const long rows = m_sections[static_cast<std::size_t>(section)].rows;
    const long first = std::clamp(rowAtDistance(section, top - place.rowsTop), 0L, rows);
    long last = std::clamp(rowAtDistance(section, bottom - place.rowsTop), first, rows);
    // The one in which the stretch ends, unless it only touches it.
    if (last < rows && topOf({section, last}) < bottom) ++last;
    return {first, last};
}

std::optional<TableRow> TableGeometry::rowAt(double y) const {
    const auto [first, last] = sectionsIn(y, y + m_rowHeight);
    for (long section = first; section < last; ++section) {
        const TableRow row{section, rowAtDistance(section, y - m_places[static_cast<std::size_t>(section)].rowsTop)};
        if (contains(row)) return row;
    }
    return std::nullopt;
}

std::optional<TableRow> TableGeometry::neighbour(TableRow row, bool forward) const {
    row.row += forward ? 1 : -1;
    while (!contains(row)) {
        row.section += forward ? 1 : -1;
        if (row.section < 0 || row.section >= static_cast<long>(m_sections.size())) return std::nullopt;
        row.row = forward ? 0 : m_sections[static_cast<std::size_t>(row.section)].rows - 1;
    }
    return row;
}

} // namespace seat
