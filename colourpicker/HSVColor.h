#pragma once

#include <memory>
#include <type_traits>

class UIColor;

// Hue (a fraction of a full turn), saturation and brightness, each from 0 to 1: the widget's only colour state. Alpha
// is no part of it; colours made from it are opaque.
struct HSVColor {
    double h = 0;
    double s = 0;
    double v = 0;
    friend bool operator==(const HSVColor&, const HSVColor&) = default;
};
static_assert(sizeof(HSVColor) == 24 && std::is_trivially_copyable_v<HSVColor>);

// Writes the colour's triple into the record; leaves the record as it was when the colour has none, or is nil.
extern "C" [[gnu::visibility("default")]] void HSVColorFromUIColor(const std::shared_ptr<UIColor>& color,
                                                                   HSVColor& hsv);

// A new opaque colour.
std::shared_ptr<UIColor> colorFromHSV(const HSVColor& hsv);
