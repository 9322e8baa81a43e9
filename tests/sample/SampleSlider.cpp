#include "tests/sample/SampleSlider.h"

#include "platform/foundation/NSString.h"
#include "platform/runtime/method.h"
#include "platform/uikit/UIBezierPath.h"
#include "platform/uikit/UIPanGestureRecognizer.h"
#include "platform/uikit/UITapGestureRecognizer.h"

#include <algorithm>
#include <cmath>

NS_CLASS_IMPLEMENTATION(SampleSlider, UIControl, method<&SampleSlider::touched>("touched:"))

namespace {

constexpr double knobRadius = 12;

} // namespace

std::shared_ptr<SampleSlider> SampleSlider::initWithFrame(CGRect frame) {
    if (!UIControl::initWithFrame(frame)) return nullptr;
    addGestureRecognizer(UIPanGestureRecognizer::alloc()->initWithTarget_action(shared_from_this(), "touched:"));
    addGestureRecognizer(UITapGestureRecognizer::alloc()->initWithTarget_action(shared_from_this(), "touched:"));
    return self(this);
}

void SampleSlider::setValue(double value) {
    m_value = std::clamp(value, 0.0, 1.0);
    setNeedsDisplay();
}

bool SampleSlider::change(double value) {
    const double before = m_value;
    setValue(value);
    if (m_value == before) return false;
    sendActionsForControlEvents(UIControlEventValueChanged);
    return true;
}

void SampleSlider::touched(const std::shared_ptr<UIGestureRecognizer>& recognizer) {
    // A pan that has ended has no touch left; its last place has been taken already.
    if (!recognizer || recognizer->numberOfTouches() == 0) return;
    const double track = std::max(bounds().size.width - 2 * knobRadius, 1.0);
    change((recognizer->locationOfTouch_inView(0, this).x - knobRadius) / track);
}

void SampleSlider::drawRect(CGRect) {
    const CGRect track = CGRectInset(bounds(), knobRadius, bounds().size.height / 2 - 2);
    const auto bar = [](CGRect rect) {
        UIBezierPath::bezierPathWithRoundedRect_byRoundingCorners_cornerRadii(rect, UIRectCornerAllCorners, {2, 2})
            ->fill();
    };
    UIColor::lightGrayColor()->setFill();
    bar(track);
    UIColor::blueColor()->setFill();
    bar({track.origin, {track.size.width * m_value, track.size.height}});
    const double x = track.origin.x + track.size.width * m_value;
    UIBezierPath::bezierPathWithOvalInRect(
        {{x - knobRadius, CGRectGetMidY(bounds()) - knobRadius}, {2 * knobRadius, 2 * knobRadius}})
        ->fill();
}

std::string SampleSlider::accessibilityValue() const {
    return NSStringWithFormat("%d percent", static_cast<int>(std::lround(m_value * 100)));
}

bool SampleSlider::accessibilityStep(UIAccessibilityDirection direction, UIAccessibilityStep step) {
    const double distance = step == UIAccessibilityStep::Large ? 0.1 : 0.01;
    const bool isUp = direction == UIAccessibilityDirection::Right || direction == UIAccessibilityDirection::Up;
    return change(m_value + (isUp ? distance : -distance));
}

bool SampleSlider::accessibilitySetValue(double value) { return change(value); }
