#pragma once

// The toolkit's fonts behind ours. The families are chosen at the first use.

#include "platform/uikit/UIFont.h"

#include <QFont>

namespace host {

struct FontMetrics {
    double ascent = 0; // of a font of size 1
    double descent = 0;
};

// False without fonts or without the toolkit running.
bool fontsAreThere();
FontMetrics metricsOfSystemFont(bool bold);
// `scale`: pixels a point.
QFont toolkitFont(const UIFont& font, double scale);

} // namespace host
