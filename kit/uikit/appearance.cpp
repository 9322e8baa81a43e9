#include "kit/uikit/appearance.h"

#include "platform/uikit/UIScreen.h"

#include <cmath>

namespace seat::appearance {
namespace {

double pixelsPerPoint() {
    const double scale = UIScreen::mainScreen()->scale();
    return scale > 0 ? scale : 1;
}

} // namespace

// Colours live as long as the process, so that what is drawn last can still use them.
#define APPEARANCE_COLOR(name, red, green, blue)                                                                       \
    const std::shared_ptr<UIColor>& name() {                                                                           \
        static const auto& color =                                                                                     \
            *new std::shared_ptr<UIColor>(UIColor::colorWithRed_green_blue_alpha(red, green, blue, 1));                \
        return color;                                                                                                  \
    }

APPEARANCE_COLOR(pageColor, 0.949, 0.949, 0.969)
APPEARANCE_COLOR(cardColor, 1, 1, 1)
APPEARANCE_COLOR(pressedColor, 0.835, 0.835, 0.855)
APPEARANCE_COLOR(separatorColor, 0.79, 0.79, 0.80)
APPEARANCE_COLOR(textColor, 0, 0, 0)
APPEARANCE_COLOR(secondaryTextColor, 0.40, 0.40, 0.43)
APPEARANCE_COLOR(markColor, 0.74, 0.74, 0.76)
APPEARANCE_COLOR(tintColor, 0, 0.40, 0.86)
APPEARANCE_COLOR(barColor, 0.976, 0.976, 0.980)

#undef APPEARANCE_COLOR

double hairline() { return 1 / pixelsPerPoint(); }

double roundToPixel(double points) { return std::round(points * pixelsPerPoint()) / pixelsPerPoint(); }

} // namespace seat::appearance
