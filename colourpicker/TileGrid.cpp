#include "colourpicker/TileGrid.h"

#include "colourpicker/truncation.h"

#include <algorithm>

double TileGrid::columns() const { return truncatedToInt(size.width / tile); }

double TileGrid::rows() const { return truncatedToInt(size.height / tile); }

std::optional<TileGrid::Tile> TileGrid::tileAtPoint(CGPoint point) const {
    if (!CGRectContainsPoint({{0, 0}, size}, point)) return std::nullopt;
    return Tile{static_cast<double>(truncatedToInt(point.x / tile)),
                static_cast<double>(truncatedToInt(point.y / tile))};
}

// Half a tile is added before cutting: the nearest tile, the later one when in doubt.
TileGrid::Tile TileGrid::tileForColor(double hue, double saturation) const {
    const double lastRow = rows() - 1;
    const double x = (hue != 1 ? hue : 0) * columns() * tile;
    const double y = (lastRow - saturation * lastRow) / desaturation * tile;
    return {static_cast<double>(truncatedToInt((x + tile / 2) / tile)),
            static_cast<double>(truncatedToInt((y + tile / 2) / tile))};
}

TileGrid::Tile TileGrid::clamped(Tile at) const {
    return {std::max(0.0, std::min(at.column, columns() - 1)), std::max(0.0, std::min(at.row, rows() - 1))};
}
