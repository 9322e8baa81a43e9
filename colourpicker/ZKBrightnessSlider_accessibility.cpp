// The brightness slider for keyboards and assistive technology.

#include "colourpicker/ZKBrightnessSlider.h"
#include "colourpicker/colour_bytes.h"
#include "platform/foundation/NSString.h"

#include <algorithm>
#include <cmath>

namespace {
constexpr double smallStep = 1; // percent
constexpr double largeStep = 10;
} // namespace

bool ZKBrightnessSlider::canBecomeFocused() const { return true; }

UIAccessibilityRole ZKBrightnessSlider::accessibilityRole() const { return UIAccessibilityRole::Slider; }

std::string ZKBrightnessSlider::accessibilityLabel() const { return "Brightness"; }

std::string ZKBrightnessSlider::accessibilityValue() const {
    return NSStringWithFormat("%d percent", truncatedToInt(std::round(doubleValue(m_brightness) * 100)));
}

std::optional<UIAccessibilityRange> ZKBrightnessSlider::accessibilityRange() const {
    return UIAccessibilityRange{doubleValue(m_brightnessLowerLimit) * 100, 100, doubleValue(m_brightness) * 100,
                                smallStep};
}

// A tap on the middle would choose the brightness there, which nobody pointed at.
bool ZKBrightnessSlider::accessibilityActivate() { return false; }

bool ZKBrightnessSlider::accessibilityStep(UIAccessibilityDirection direction, UIAccessibilityStep step) {
    const double percent = step == UIAccessibilityStep::Small ? smallStep : largeStep;
    const bool brighter = direction == UIAccessibilityDirection::Left || direction == UIAccessibilityDirection::Up;
    // From whole percents to whole percents, wherever a finger has left it.
    const double from = std::round(doubleValue(m_brightness) * 100);
    return accessibilitySetValue(brighter ? from + percent : from - percent);
}

// A drag there and then a tap: the drag makes the brightness known, the tap, which reports what was known before it,
// makes it stored.
bool ZKBrightnessSlider::accessibilitySetValue(double percent) {
    const double limit = floatValue(m_brightnessLowerLimit);
    const double width = m_controlFrame.size.width;
    if (!(width > 0) || !(limit < 1) || std::isnan(percent)) return false;
    const double wanted = std::max(limit, std::min(percent / 100, 1.0));
    if (wanted == doubleValue(m_brightness)) return false;
    const CGPoint point{m_controlFrame.origin.x + width * (1 - wanted) / (1 - limit), CGRectGetMidY(m_controlFrame)};
    pannedToPoint_ended(point, /*ended*/ false);
    panLifted();
    tappedAtPoint(point);
    return true;
}
