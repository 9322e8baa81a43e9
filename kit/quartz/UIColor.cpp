#include "platform/uikit/UIColor.h"

#include "kit/quartz/drawing.h"
#include "platform/uikit/UIImage.h"

#include <algorithm>
#include <cmath>

NS_CLASS_IMPLEMENTATION(UIColor, NSObject)

namespace {

struct Components {
    double red;
    double green;
    double blue;
};

// Sixths of a turn. A hue that is no number, or infinite, counts as red.
double sixthsOf(double hue) {
    if (!std::isfinite(hue)) return 0;
    return std::isfinite(hue * 6) ? hue * 6 : std::fmod(hue, 1) * 6;
}

// The hexcone model. Saturation and brightness go through the arithmetic as they come.
Components componentsFromHSB(double hue, double saturation, double brightness) {
    if (saturation == 0) return {brightness, brightness, brightness};
    const double turn = sixthsOf(hue);
    const double whole = std::floor(turn);
    const double f = turn - whole;
    double sector = std::fmod(whole, 6);
    if (sector < 0) sector += 6;
    const double v = brightness;
    const double p = v * (1 - saturation);
    const double q = v * (1 - saturation * f);
    const double t = v * (1 - saturation * (1 - f));
    switch (static_cast<int>(sector)) {
    case 0:
        return {v, t, p};
    case 1:
        return {q, v, p};
    case 2:
        return {p, v, t};
    case 3:
        return {p, q, v};
    case 4:
        return {t, p, v};
    default:
        return {v, p, q};
    }
}

void assign(double* output, double value) {
    if (output) *output = value;
}

} // namespace

std::shared_ptr<UIColor> UIColor::colorWithRed_green_blue_alpha(double red, double green, double blue, double alpha) {
    const auto color = alloc();
    color->m_color = std::make_shared<struct CGColor>(red, green, blue, alpha);
    return color;
}

std::shared_ptr<UIColor> UIColor::colorWithHue_saturation_brightness_alpha(double hue, double saturation,
                                                                           double brightness, double alpha) {
    return alloc()->initWithHue_saturation_brightness_alpha(hue, saturation, brightness, alpha);
}

std::shared_ptr<UIColor> UIColor::colorWithWhite_alpha(double white, double alpha) {
    return colorWithRed_green_blue_alpha(white, white, white, alpha);
}

std::shared_ptr<UIColor> UIColor::patternColor() {
    const auto color = alloc();
    color->m_isPattern = true;
    return color;
}

std::shared_ptr<UIColor> UIColor::initWithHue_saturation_brightness_alpha(double hue, double saturation,
                                                                          double brightness, double alpha) {
    const auto [red, green, blue] = componentsFromHSB(hue, saturation, brightness);
    m_color = std::make_shared<struct CGColor>(red, green, blue, alpha);
    return self(this);
}

// The named colours are never destroyed: they may be asked for while the process ends.

std::shared_ptr<UIColor> UIColor::whiteColor() {
    static const auto* const color = new auto(colorWithWhite_alpha(1, 1));
    return *color;
}
std::shared_ptr<UIColor> UIColor::blackColor() {
    static const auto* const color = new auto(colorWithWhite_alpha(0, 1));
    return *color;
}
std::shared_ptr<UIColor> UIColor::redColor() {
    static const auto* const color = new auto(colorWithRed_green_blue_alpha(1, 0, 0, 1));
    return *color;
}
std::shared_ptr<UIColor> UIColor::blueColor() {
    static const auto* const color = new auto(colorWithRed_green_blue_alpha(0, 0, 1, 1));
    return *color;
}
std::shared_ptr<UIColor> UIColor::lightGrayColor() {
    static const auto* const color = new auto(colorWithWhite_alpha(2.0 / 3, 1));
    return *color;
}
std::shared_ptr<UIColor> UIColor::clearColor() {
    static const auto* const color = new auto(colorWithWhite_alpha(0, 0));
    return *color;
}

bool UIColor::getRed_green_blue_alpha(double* red, double* green, double* blue, double* alpha) const {
    if (!m_color) return false;
    assign(red, m_color->red);
    assign(green, m_color->green);
    assign(blue, m_color->blue);
    assign(alpha, m_color->alpha);
    return true;
}

bool UIColor::getHue_saturation_brightness_alpha(double* hue, double* saturation, double* brightness,
                                                 double* alpha) const {
    if (!m_color) return false;
    const auto& [r, g, b, a] = *m_color;
    // fmax and fmin pass over a component that is no number; the saturation is then none either.
    const double largest = std::fmax(r, std::fmax(g, b));
    const double range = largest - std::fmin(r, std::fmin(g, b));
    double s = 0;
    double h = 0;
    if (std::isnan(r + g + b)) {
        s = r + g + b;
    } else if (largest > 0 && range > 0) {
        s = range / largest;
        if (largest == r)
            h = (g - b) / range;
        else if (largest == g)
            h = 2 + (b - r) / range;
        else
            h = 4 + (r - g) / range;
        h /= 6;
        if (h < 0) h += 1;
    }
    assign(hue, h);
    assign(saturation, s);
    assign(brightness, largest);
    assign(alpha, a);
    return true;
}

void UIColor::setFill() const { CGContextSetFillColorWithColor(UIGraphicsGetCurrentContext(), m_color); }
void UIColor::setStroke() const { CGContextSetStrokeColorWithColor(UIGraphicsGetCurrentContext(), m_color); }

bool UIColor::isEqual(const NSObject& other) const {
    if (this == &other) return true;
    const auto* color = dynamic_cast<const UIColor*>(&other);
    if (!color || color->m_isPattern || m_isPattern || !m_color || !color->m_color) return false;
    return *m_color == *color->m_color;
}
