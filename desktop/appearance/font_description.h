#pragma once

#include <string>

namespace seat {

struct FontDescription {
    std::string family;   // as it was written, with words for the weight that may stand after it
    double pointSize = 0; // 0: it does not say
};

// Of a desktop's setting, as "Cantarell 11", "Noto Sans, Bold 10.5" or "Sans".
FontDescription parseFontDescription(const std::string& text);

// How much larger than desktops have it by themselves: 10 or 11 points.
double textScaleForPointSize(double pointSize);

} // namespace seat
