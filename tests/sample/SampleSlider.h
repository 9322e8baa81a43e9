#pragma once

#include "platform/uikit/UIControl.h"

class UIGestureRecognizer;

// A value from 0 to 1, set by a tap or a drag along it, by arrows and by assistive technology.
class SampleSlider final : public UIControl {
    NS_CLASS(SampleSlider)
public:
    std::shared_ptr<SampleSlider> initWithFrame(CGRect frame);

    double value() const { return m_value; }
    // Sends nothing.
    void setValue(double value);

    void touched(const std::shared_ptr<UIGestureRecognizer>& recognizer);

    void drawRect(CGRect rect) override;
    bool canBecomeFocused() const override { return true; }
    UIAccessibilityRole accessibilityRole() const override { return UIAccessibilityRole::Slider; }
    std::optional<UIAccessibilityRange> accessibilityRange() const override { return {{0, 1, m_value, 0.01}}; }
    std::string accessibilityValue() const override;
    bool accessibilityStep(UIAccessibilityDirection direction, UIAccessibilityStep step) override;
    bool accessibilitySetValue(double value) override;

private:
    bool change(double value);

    double m_value = 0.5;
};
