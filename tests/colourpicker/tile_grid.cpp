#include "colourpicker/TileGrid.h"

#include "colourpicker/HSVColor.h"
#include "platform/uikit/UIColor.h"
#include "tests/colourpicker/PickerScene.h"
#include "tests/colourpicker/reference_tables.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using Tile = TileGrid::Tile;

TileGrid gridOf(const ReferenceField& field) { return {{field.width, field.height}, field.tile, field.limit}; }

constexpr TileGrid pickerGrid{{320, 356}, 16, 0.9f};

} // namespace

TEST(TileGrid, CountsWholeTilesOnly) {
    for (const ReferenceField& field : referenceFields) {
        EXPECT_EQ(gridOf(field).columns(), field.columns);
        EXPECT_EQ(gridOf(field).rows(), field.rows);
        EXPECT_EQ(gridOf(field).fieldSize(), (CGSize{field.columns * field.tile, field.rows * field.tile}));
    }
}

TEST(TileGrid, EveryTileOfFiveFieldsHasItsColour) {
    for (const ReferenceTile& tile : referenceTiles) {
        const TileGrid grid = gridOf(referenceFields[tile.field]);
        const double hue = grid.hueOfColumn(tile.column);
        const double saturation = grid.saturationOfRow(tile.row);
        ASSERT_NEAR(hue, tile.hue, 1e-14);
        ASSERT_NEAR(saturation, tile.saturation, 1e-14);
        const RGBA color = rgba(hsb(hue, saturation, referenceTileBrightness));
        ASSERT_NEAR(color.red, tile.red, 1e-14);
        ASSERT_NEAR(color.green, tile.green, 1e-14);
        ASSERT_NEAR(color.blue, tile.blue, 1e-14);
    }
}

TEST(TileGrid, ATouchInATileAndItsColourLeadBackToIt) {
    for (const ReferenceTile& tile : referenceTiles) {
        const TileGrid grid = gridOf(referenceFields[tile.field]);
        const Tile expected{double(tile.column), double(tile.row)};
        const CGRect rect = grid.tileRect(expected);
        ASSERT_EQ(grid.tileAtPoint(rect.origin), expected);
        ASSERT_EQ(grid.tileAtPoint({CGRectGetMidX(rect), CGRectGetMidY(rect)}), expected);
        const HSBA color = hsba(hsb(tile.hue, tile.saturation, referenceTileBrightness));
        // White keeps no hue.
        const double column = tile.saturation > 0 ? tile.column : 0;
        ASSERT_EQ(grid.tileForColor(color.hue, color.saturation), (Tile{column, expected.row}));
    }
}

TEST(TileGrid, HueOneIsNeverShownAndTheTopRowIsFull) {
    EXPECT_EQ(pickerGrid.hueOfColumn(19), 19.0 / 20);
    EXPECT_EQ(pickerGrid.saturationOfRow(0), 1);
    EXPECT_NEAR(pickerGrid.saturationOfRow(21), 0.1, 1e-6);
}

TEST(TileGrid, WhiteOverPureHueGivesTheSaturation) {
    for (int row = 0; row < 22; ++row)
        EXPECT_NEAR(pickerGrid.whitenessOfRow(row), 1 - pickerGrid.saturationOfRow(row), 1e-15);
}

TEST(TileGrid, PointsOutsideAreDroppedAndTheFarEdgesAreOutside) {
    EXPECT_FALSE(pickerGrid.tileAtPoint({-0.001, 5}));
    EXPECT_FALSE(pickerGrid.tileAtPoint({5, -0.001}));
    EXPECT_FALSE(pickerGrid.tileAtPoint({320, 5}));
    EXPECT_FALSE(pickerGrid.tileAtPoint({5, 356}));
    EXPECT_EQ(pickerGrid.tileAtPoint({0, 0}), (Tile{0, 0}));
    EXPECT_EQ(pickerGrid.tileAtPoint({319.999, 0}), (Tile{19, 0}));
}

TEST(TileGrid, PartialTilesLieOutsideTheField) {
    const TileGrid grid{{330, 356}, 16, 0.9f};

    EXPECT_EQ(grid.tileAtPoint({325, 355}), (Tile{20, 22}));
    EXPECT_EQ(grid.hueOfColumn(20), 1);
    EXPECT_LT(grid.saturationOfRow(22), 1 - grid.desaturation);
}

TEST(TileGrid, HueExactlyOneIsColumnZeroButHueJustBelowLandsOneColumnOutside) {
    EXPECT_EQ(pickerGrid.tileForColor(1, 1).column, 0);
    EXPECT_EQ(pickerGrid.tileForColor(0.9749, 1).column, 19);
    EXPECT_EQ(pickerGrid.tileForColor(0.975, 1).column, 20);
    EXPECT_EQ(pickerGrid.tileForColor(std::nextafter(1.0, 0.0), 1).column, 20);
}

TEST(TileGrid, WhiteLandsBelowTheField) {
    const TileGrid twentyRows{{320, 320}, 16, 0.9f};
    EXPECT_EQ(twentyRows.tileForColor(0, 0).row, 21);
}

TEST(TileGrid, HalfATileRoundsUp) {
    const TileGrid grid{{40, 40}, 4, 1};
    EXPECT_EQ(grid.tileForColor(0.0499, 1).column, 0);
    EXPECT_EQ(grid.tileForColor(0.05, 1).column, 1);
}

TEST(TileGrid, DegenerateFieldsGiveWhatTheDivisionGives) {
    const TileGrid oneRow{{320, 16}, 16, 0.9f};
    EXPECT_TRUE(std::isnan(oneRow.whitenessOfRow(0)));
    EXPECT_TRUE(std::isnan(oneRow.saturationOfRow(0)));
    EXPECT_EQ(oneRow.tileForColor(0.5, 0.5), (Tile{10, 0}));

    const TileGrid narrow{{8, 320}, 16, 0.9f};
    EXPECT_EQ(narrow.columns(), 0);
    EXPECT_EQ(narrow.fieldSize().width, 0);
    EXPECT_TRUE(std::isnan(narrow.hueOfColumn(0)));
    EXPECT_EQ(narrow.tileForColor(0.5, 1).column, 0);
}

TEST(TileGrid, WithoutATileSizeNothingIsInfinite) {
    for (const double tile : {0.0, std::nan("")}) {
        const TileGrid grid{{320, 356}, tile, 0.9f};
        EXPECT_TRUE(std::isfinite(grid.columns()));
        EXPECT_TRUE(std::isfinite(grid.tileForColor(0.5, 0.5).column));
        EXPECT_TRUE(std::isfinite(grid.tileForColor(0.5, 0.5).row));
        EXPECT_TRUE(grid.tileAtPoint({5, 5}));
    }
    EXPECT_EQ((TileGrid{{320, 356}, 0, 0.9f}.fieldSize()), (CGSize{0, 0}));
}

TEST(TileGrid, WithoutDesaturationAPaleColourLiesFarBelow) {
    const TileGrid grid{{320, 356}, 16, 0};
    EXPECT_EQ(grid.tileForColor(0, 1).row, 0);
    EXPECT_TRUE(std::isfinite(grid.tileForColor(0, 0.5).row));
    EXPECT_GT(grid.tileForColor(0, 0.5).row, 1e6);
}

TEST(TileGrid, ClampingMovesATileIntoTheField) {
    EXPECT_EQ(pickerGrid.clamped({20, 25}), (Tile{19, 21}));
    EXPECT_EQ(pickerGrid.clamped({-1, -1}), (Tile{0, 0}));
    EXPECT_EQ(pickerGrid.clamped({7, 3}), (Tile{7, 3}));
}
