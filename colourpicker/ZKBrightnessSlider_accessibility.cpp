// The brightness slider for keyboards and assistive technology.

#include "colourpicker/ZKBrightnessCursor.h"
#include "colourpicker/ZKBrightnessSlider.h"
#include "platform/foundation/NSLocalizedString.h"
#include "platform/foundation/NSString.h"

#include <algorithm>
#include <cmath>

namespace {
constexpr double smallStep = 1; // percent
constexpr double largeStep = 10;

// The brightness that shows as this many percent, which are cut, not rounded, from a single-precision number.
double brightnessShownAs(double percent) {
    const auto brightness = static_cast<float>(percent / 100);
    return brightness * 100.0 < std::floor(percent) ? std::nextafter(brightness, 2.0f) : percent / 100;
}

} // namespace

bool ZKBrightnessSlider::canBecomeFocused() const { return true; }

UIAccessibilityRole ZKBrightnessSlider::accessibilityRole() const { return UIAccessibilityRole::Slider; }

std::string ZKBrightnessSlider::accessibilityLabel() const { return NSLocalizedString("Brightness"); }

std::string ZKBrightnessSlider::accessibilityValue() const {
    return NSLocalizedStringWithValues("%1 percent", {NSStringFromInteger(m_brightnessCursor->percent())});
}

std::optional<UIAccessibilityRange> ZKBrightnessSlider::accessibilityRange() const {
    // A colour from outside may be darker than the slider goes.
    const double shown = m_brightnessCursor->percent();
    return UIAccessibilityRange{std::min(doubleValue(m_brightnessLowerLimit) * 100, shown), 100, shown, smallStep};
}

// A tap on the middle would choose the brightness there, which nobody pointed at.
bool ZKBrightnessSlider::accessibilityActivate() { return false; }

bool ZKBrightnessSlider::accessibilityStep(UIAccessibilityDirection direction, UIAccessibilityStep step) {
    const double percent = step == UIAccessibilityStep::Small ? smallStep : largeStep;
    const bool brighter = direction == UIAccessibilityDirection::Left || direction == UIAccessibilityDirection::Up;
    // From whole percents to whole percents, wherever a finger has left it.
    const double from = m_brightnessCursor->percent();
    return accessibilitySetValue(brighter ? from + percent : from - percent);
}

// A drag there and then a tap: the drag makes the brightness known, the tap, which reports what was known before it,
// makes it stored.
bool ZKBrightnessSlider::accessibilitySetValue(double percent) {
    const double limit = floatValue(m_brightnessLowerLimit);
    const double width = m_controlFrame.size.width;
    if (!(width > 0) || !(limit < 1) || std::isnan(percent)) return false;
    const double now = floatValue(m_brightness);
    const double wanted = std::max(limit, std::min(brightnessShownAs(percent), 1.0));
    // Already there; or darker than the slider goes, from where going to its end would be brighter.
    if (static_cast<float>(wanted) == floatValue(m_brightness) || (percent / 100 < now && wanted > now)) return false;
    const CGPoint point{m_controlFrame.origin.x + width * (1 - wanted) / (1 - limit), CGRectGetMidY(m_controlFrame)};
    pannedToPoint_ended(point, /*ended*/ false);
    panLifted();
    tappedAtPoint(point);
    return true;
}
