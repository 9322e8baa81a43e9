#pragma once

// What a table sets on its cells, and a cell asks of its table.

#include "platform/uikit/UITableViewCell.h"

class UITableView;

namespace seat {

// Where in its card a row stands.
struct CellPlace {
    bool isGrouped = false;
    bool isFirst = false; // rounded at the top
    bool isLast = false;  // rounded at the bottom, no separator
    friend bool operator==(CellPlace, CellPlace) = default;
};

} // namespace seat

struct UITableViewCell::Internals {
    static void setPlace(UITableViewCell& cell, seat::CellPlace place);
    // Weak; nil for a cell in no table.
    static void setTable(UITableViewCell& cell, const std::shared_ptr<UITableView>& table);
    // In a card of a width, when the text is larger than usual; it may be more than a line.
    static double heightFor(const UITableViewCell& cell, double width);
    // The texts and the accessory come in softly; the card stays as it is.
    static void fadeContentIn(UITableViewCell& cell);
};
using CellInternals = UITableViewCell::Internals;
