#include "colourpicker/colour_bytes.h"

#include "colourpicker/truncation.h"
#include "platform/uikit/UIColor.h"

ColorBytes colorBytes(const std::shared_ptr<UIColor>& color) {
    double red = 0;
    double green = 0;
    double blue = 0;
    if (color) color->getRed_green_blue_alpha(&red, &green, &blue, nullptr);
    return {truncatedToInt(red * 255.0), truncatedToInt(green * 255.0), truncatedToInt(blue * 255.0)};
}
