#pragma once

#include "kit/uikit/appearance.h"

#include <string>

namespace seat {

// How the desktop's user wants programs to look.
struct DesktopLook {
    appearance::Look colors;
    double textScale = 1;   // times the size that text has by itself
    std::string fontFamily; // empty: it does not say
    friend bool operator==(const DesktopLook&, const DesktopLook&) = default;
};

} // namespace seat
