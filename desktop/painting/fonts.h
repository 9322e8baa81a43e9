#pragma once

// The toolkit's fonts behind ours. The families are chosen at the first use.

#include "kit/seat.h"

#include <QFont>

namespace seat {

// False without fonts or without the toolkit running.
bool fontsAreThere();
// `scale`: pixels a point.
QFont toolkitFont(const UIFont& font, double scale);

} // namespace seat
