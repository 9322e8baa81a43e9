#include "colourpicker/colour_bytes.h"

#include "platform/uikit/UIColor.h"

#include <cmath>
#include <limits>

std::int32_t truncatedToInt(double value) {
    using Limits = std::numeric_limits<std::int32_t>;
    if (std::isnan(value)) return 0;
    if (value <= Limits::min()) return Limits::min();
    if (value >= Limits::max()) return Limits::max();
    return static_cast<std::int32_t>(value);
}

ColorBytes colorBytes(const std::shared_ptr<UIColor>& color) {
    double red = 0;
    double green = 0;
    double blue = 0;
    if (color) color->getRed_green_blue_alpha(&red, &green, &blue, nullptr);
    return {truncatedToInt(red * 255.0), truncatedToInt(green * 255.0), truncatedToInt(blue * 255.0)};
}
