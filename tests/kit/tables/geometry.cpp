#include "kit/tables/TableGeometry.h"
#include "tests/kit/uikit/SceneTest.h"

#include <cmath>

using namespace seat;

namespace {

// A line of text is 16 points high and holds a letter for each 10 points.
double measure(const std::string& text, double width) {
    return 16 * std::max(1.0, std::ceil(static_cast<double>(text.size()) * 10 / std::max(width, 1.0)));
}

TableGeometry laidOut(std::vector<TableSection> sections, double width = 320, bool isGrouped = true) {
    TableGeometry geometry;
    geometry.setSections(std::move(sections));
    geometry.layOut(width, isGrouped, measure);
    return geometry;
}

TEST(TableGeometries, EmptyTableHasNoHeight) {
    const auto geometry = laidOut({});
    EXPECT_EQ(geometry.contentHeight(), 0);
    EXPECT_FALSE(geometry.rowAt(10));
    EXPECT_EQ(geometry.sectionsIn(0, 1000), (std::pair<long, long>{0, 0}));
}

TEST(TableGeometries, RowUnderAPointIsTheOneWhoseRectHoldsIt) {
    const auto geometry = laidOut({{3, "header", "footer"}, {0, "", ""}, {2, "", ""}});
    for (double y = -50; y < geometry.contentHeight() + 50; y += 0.5) {
        const auto row = geometry.rowAt(y);
        bool isFound = false;
        for (long section = 0; section < 3; ++section)
            for (long index = 0; geometry.contains({section, index}); ++index) {
                const CGRect rect = geometry.rowRect({section, index});
                if (y < CGRectGetMinY(rect) || y >= CGRectGetMaxY(rect)) continue;
                isFound = true;
                EXPECT_EQ(row, (TableRow{section, index})) << y;
            }
        EXPECT_EQ(row.has_value(), isFound) << y;
    }
}

TEST(TableGeometries, TextsStandBetweenTheCardsWithoutTouchingThem) {
    const auto geometry = laidOut({{1, "header", "footer"}, {1, "another", ""}});
    EXPECT_LE(CGRectGetMaxY(geometry.headerRect(0)), CGRectGetMinY(geometry.rowRect({0, 0})));
    EXPECT_GE(CGRectGetMinY(geometry.footerRect(0)), CGRectGetMaxY(geometry.rowRect({0, 0})));
    EXPECT_GE(CGRectGetMinY(geometry.headerRect(1)), CGRectGetMaxY(geometry.footerRect(0)));
    EXPECT_LE(CGRectGetMaxY(geometry.headerRect(1)), CGRectGetMinY(geometry.rowRect({1, 0})));
}

TEST(TableGeometries, CardsHaveWholePixelsAtQuarterScalesToo) {
    const auto geometry = laidOut({{2, std::string(77, 'x'), std::string(99, 'y')}, {3, "", "footer"}, {1, "h", ""}});
    for (long section = 0; section < 3; ++section) EXPECT_EQ(std::fmod(geometry.rowRect({section, 0}).origin.y, 4), 0);
}

TEST(TableGeometries, NarrowWindowGivesNoNegativeWidth) {
    const auto geometry = laidOut({{2, "header", ""}}, 10);
    EXPECT_GE(geometry.cardWidth(), 0);
    EXPECT_GE(geometry.headerRect(0).size.width, 0);
}

TEST(TableGeometries, NeighboursLeadOverEmptySections) {
    const auto geometry = laidOut({{0, "", ""}, {1, "", ""}, {0, "", ""}, {2, "", ""}});
    EXPECT_EQ(geometry.neighbour({1, 0}, true), (TableRow{3, 0}));
    EXPECT_EQ(geometry.neighbour({3, 0}, false), (TableRow{1, 0}));
    EXPECT_FALSE(geometry.neighbour({1, 0}, false));
    EXPECT_FALSE(geometry.neighbour({3, 1}, true));
}

} // namespace
