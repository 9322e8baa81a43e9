#include "colourpicker/HSVColor.h"

#include "platform/uikit/UIColor.h"

void HSVColorFromUIColor(const std::shared_ptr<UIColor>& color, HSVColor& hsv) {
    if (color) color->getHue_saturation_brightness_alpha(&hsv.h, &hsv.s, &hsv.v, nullptr);
}

std::shared_ptr<UIColor> colorFromHSV(const HSVColor& hsv) {
    return UIColor::colorWithHue_saturation_brightness_alpha(hsv.h, hsv.s, hsv.v, 1);
}
