#include "kit/uikit/appearance.h"

#include "kit/quartz/text_size.h"
#include "kit/uikit/contrast.h"
#include "platform/uikit/UIScreen.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace seat::appearance {
namespace {

enum class ColorName {
    Page,
    Card,
    Pressed,
    Bar,
    Panel,
    Text,
    SecondaryText,
    ErrorText,
    Tint,
    Separator,
    Mark,
    SwitchOn,
    FocusRing,
    Indicator,
    Count
};
constexpr auto colorCount = static_cast<std::size_t>(ColorName::Count);

using ColorTable = std::array<CGColor, colorCount>; // by name

constexpr CGColor greyOf(double level, double alpha = 1) { return {level, level, level, alpha}; }

constexpr ColorTable lightColors{{
    {0.949, 0.949, 0.969, 1}, // page
    greyOf(1),                // card
    {0.925, 0.925, 0.940, 1}, // pressed
    {0.976, 0.976, 0.980, 1}, // bar
    greyOf(0.1, 0.95),        // panel
    greyOf(0),                // text
    {0.40, 0.40, 0.43, 1},    // secondary text
    {0.70, 0, 0, 1},          // error text
    {0, 0.40, 0.86, 1},       // tint
    {0.79, 0.79, 0.80, 1},    // separator
    greyOf(0.57),             // mark
    {0.298, 0.851, 0.392, 1}, // switch that is on
    {0, 0.478, 1, 1},         // focus ring
    greyOf(0, 0.35),          // indicator
}};

constexpr ColorTable darkColors{{
    {0.106, 0.106, 0.114, 1}, // page
    {0.165, 0.165, 0.176, 1}, // card
    {0.243, 0.243, 0.259, 1}, // pressed
    {0.133, 0.133, 0.141, 1}, // bar
    {0.26, 0.26, 0.28, 1},    // panel
    greyOf(1),                // text
    {0.72, 0.72, 0.75, 1},    // secondary text
    {1, 0.60, 0.57, 1},       // error text
    {0.49, 0.74, 1, 1},       // tint
    {0.33, 0.33, 0.35, 1},    // separator
    greyOf(0.55),             // mark
    {0.298, 0.851, 0.392, 1}, // switch that is on
    {0.49, 0.74, 1, 1},       // focus ring
    greyOf(1, 0.45),          // indicator
}};

constexpr ColorTable lightColorsHighContrast{{
    greyOf(1),          // page
    greyOf(1),          // card
    greyOf(0.88),       // pressed
    greyOf(1),          // bar
    greyOf(0),          // panel
    greyOf(0),          // text
    greyOf(0.2),        // secondary text
    {0.50, 0, 0, 1},    // error text
    {0, 0.18, 0.56, 1}, // tint
    greyOf(0.25),       // separator
    greyOf(0.25),       // mark
    {0, 0.36, 0.12, 1}, // switch that is on
    {0, 0.18, 0.56, 1}, // focus ring
    greyOf(0, 0.8),     // indicator
}};

constexpr ColorTable darkColorsHighContrast{{
    greyOf(0),          // page
    greyOf(0),          // card
    greyOf(0.2),        // pressed
    greyOf(0),          // bar
    greyOf(0.16),       // panel
    greyOf(1),          // text
    greyOf(0.92),       // secondary text
    {1, 0.75, 0.73, 1}, // error text
    {0.66, 0.85, 1, 1}, // tint
    greyOf(0.75),       // separator
    greyOf(0.57),       // mark
    {0.2, 0.6, 0.3, 1}, // switch that is on
    {0.66, 0.85, 1, 1}, // focus ring
    greyOf(1, 0.8),     // indicator
}};

double upToFour(double points) { return std::ceil(points / 4) * 4; }

double pixelsPerPoint() {
    const double scale = UIScreen::mainScreen()->scale();
    return scale > 0 ? scale : 1;
}

// The objects live as long as the process, so that what is drawn last can still use them.
std::array<std::shared_ptr<UIColor>, colorCount>& namedColors() {
    static auto& colors = *[] {
        auto* const made = new std::array<std::shared_ptr<UIColor>, colorCount>;
        for (std::size_t i = 0; i < colorCount; ++i)
            (*made)[i] = UIColor::colorWithRed_green_blue_alpha(lightColors[i].red, lightColors[i].green,
                                                                lightColors[i].blue, lightColors[i].alpha);
        return made;
    }();
    return colors;
}

const std::shared_ptr<UIColor>& namedColor(ColorName name) { return namedColors()[static_cast<std::size_t>(name)]; }

Look& currentLook() {
    static Look current;
    return current;
}

ColorTable colorsOf(const Look& look) {
    ColorTable colors = look.hasHighContrast ? (look.isDark ? darkColorsHighContrast : lightColorsHighContrast)
                        : look.isDark        ? darkColors
                                             : lightColors;
    if (!look.accent) return colors;
    const auto at = [&](ColorName name) -> CGColor& { return colors[static_cast<std::size_t>(name)]; };
    const CGColor grounds[] = {at(ColorName::Page), at(ColorName::Card), at(ColorName::Pressed), at(ColorName::Bar)};
    at(ColorName::Tint) = readable(*look.accent, grounds, look.hasHighContrast ? 7 : 4.5);
    at(ColorName::FocusRing) = at(ColorName::Tint);
    // The knob is white.
    const CGColor knob[] = {greyOf(1)};
    at(ColorName::SwitchOn) = readable(*look.accent, knob, 3);
    return colors;
}

} // namespace

void setLook(const Look& look) {
    if (look == currentLook()) return;
    currentLook() = look;
    const ColorTable colors = colorsOf(look);
    // Who has taken a colour's components to draw with has taken a reference to them.
    for (std::size_t i = 0; i < colorCount; ++i) const_cast<struct CGColor&>(*namedColors()[i]->CGColor()) = colors[i];
}

const Look& look() { return currentLook(); }

const std::shared_ptr<UIColor>& pageColor() { return namedColor(ColorName::Page); }
const std::shared_ptr<UIColor>& cardColor() { return namedColor(ColorName::Card); }
const std::shared_ptr<UIColor>& pressedColor() { return namedColor(ColorName::Pressed); }
const std::shared_ptr<UIColor>& barColor() { return namedColor(ColorName::Bar); }
const std::shared_ptr<UIColor>& panelColor() { return namedColor(ColorName::Panel); }
const std::shared_ptr<UIColor>& textColor() { return namedColor(ColorName::Text); }
const std::shared_ptr<UIColor>& secondaryTextColor() { return namedColor(ColorName::SecondaryText); }
const std::shared_ptr<UIColor>& errorTextColor() { return namedColor(ColorName::ErrorText); }
const std::shared_ptr<UIColor>& tintColor() { return namedColor(ColorName::Tint); }
const std::shared_ptr<UIColor>& separatorColor() { return namedColor(ColorName::Separator); }
const std::shared_ptr<UIColor>& markColor() { return namedColor(ColorName::Mark); }
const std::shared_ptr<UIColor>& switchOnColor() { return namedColor(ColorName::SwitchOn); }
const std::shared_ptr<UIColor>& focusRingColor() { return namedColor(ColorName::FocusRing); }
const std::shared_ptr<UIColor>& indicatorColor() { return namedColor(ColorName::Indicator); }

namespace {
bool linesBeginAtTheRight = false;
} // namespace

void setRightToLeft(bool isRightToLeft) { linesBeginAtTheRight = isRightToLeft; }
bool isRightToLeft() { return linesBeginAtTheRight; }

CGRect inDirection(CGRect frame, double width) {
    if (linesBeginAtTheRight) frame.origin.x = width - frame.origin.x - frame.size.width;
    return frame;
}

NSTextAlignment startAlignment() { return linesBeginAtTheRight ? NSTextAlignmentRight : NSTextAlignmentLeft; }
NSTextAlignment endAlignment() { return linesBeginAtTheRight ? NSTextAlignmentLeft : NSTextAlignmentRight; }

std::shared_ptr<UIFont> textFont(double pointSize) { return FontInternals::textFont(pointSize, /*bold*/ false); }
std::shared_ptr<UIFont> boldTextFont(double pointSize) { return FontInternals::textFont(pointSize, /*bold*/ true); }
std::shared_ptr<UIFont> controlFont() { return FontInternals::controlFont(17, /*bold*/ false); }
std::shared_ptr<UIFont> boldControlFont() { return FontInternals::controlFont(17, /*bold*/ true); }

double heightForText(double usualHeight) {
    constexpr double lineHeight = 20; // of text of 17 points
    return upToFour(usualHeight + lineHeight * std::max(0.0, textScale() - 1));
}

double heightAroundText(double textHeight) {
    constexpr double space = 24; // above and below, together
    const bool isOneLine = textHeight < 1.5 * textFont(17)->lineHeight();
    return isOneLine ? heightForText(rowHeight) : upToFour(textHeight + space);
}

double hairline() { return 1 / pixelsPerPoint(); }

double roundToPixel(double points) { return std::round(points * pixelsPerPoint()) / pixelsPerPoint(); }

} // namespace seat::appearance
