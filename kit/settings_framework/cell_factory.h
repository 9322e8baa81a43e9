#pragma once

#include "platform/settings_framework/PSTableCell.h"

#include <memory>

namespace seat {

// The row's kept cell ("cellObject"), or a new one of the row's "cellClass" (a class or a class's name), else of its
// kind, which is kept from then on. A new one has been given its value, by the row's property "value" and by
// `setValue`. Never nil.
std::shared_ptr<PSTableCell> cellFor(const std::shared_ptr<PSSpecifier>& row);

// nil when the row has none yet.
std::shared_ptr<PSTableCell> keptCell(const PSSpecifier& row);

// Title and value of the row, read again into the cell it has; nothing when it has none.
void refreshCell(const std::shared_ptr<PSSpecifier>& row);

} // namespace seat
