#pragma once

#include "platform/quartz/CGGeometry.h"

#include <optional>

// The colour field's geometry: square tiles in whole columns (hue) and rows (saturation, falling). Drawing, touches and
// the cursor all go by it. Nothing is guarded: a field without columns or with one row gives what the division gives.
struct TileGrid {
    struct Tile {
        double column = 0;
        double row = 0;
        friend bool operator==(const Tile&, const Tile&) = default;
    };

    CGSize size;             // of the view, in points; what does not fill a tile at the right and bottom holds none
    double tile = 0;         // edge of a tile, in points
    double desaturation = 0; // how much saturation the bottom row has lost

    double columns() const;
    double rows() const;
    // Of all whole tiles.
    CGSize fieldSize() const { return {columns() * tile, rows() * tile}; }
    CGRect tileRect(Tile at) const { return {{at.column * tile, at.row * tile}, {tile, tile}}; }

    double hueOfColumn(double column) const { return column / columns(); }
    // How much white is mixed in.
    double whitenessOfRow(double row) const { return desaturation * (row / (rows() - 1)); }
    double saturationOfRow(double row) const { return 1 - desaturation * row / (rows() - 1); }

    // Nothing for a point outside the view. Beyond the last whole column or row the tile is outside the field.
    std::optional<Tile> tileAtPoint(CGPoint point) const;
    // The tile nearest to a colour. Hue 1 is column 0; other hues just below 1, and saturations below that of the
    // bottom row, have their tile outside the field.
    Tile tileForColor(double hue, double saturation) const;
    // Moved into the field, where there is one.
    Tile clamped(Tile at) const;
};
