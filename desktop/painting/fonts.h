#pragma once

// The toolkit's fonts behind ours. The family is chosen at the first use, and again when another one is wanted.

#include "kit/seat.h"

#include <QFont>

#include <string>

namespace seat {

// The family that the desktop wants programs to use, with or without words for its weight; empty: it does not say. One
// that is not there, or is of fixed pitch, is passed over. Main thread.
void setFontFamily(const std::string& family);
// False without fonts or without the toolkit running.
bool fontsAreThere();
// `scale`: pixels a point.
QFont toolkitFont(const UIFont& font, double scale);

} // namespace seat
