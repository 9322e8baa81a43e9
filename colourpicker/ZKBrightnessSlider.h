#pragma once

#include "colourpicker/part_protocols.h"
#include "platform/uikit/UIControl.h"

#include <memory>
#include <optional>

class CAGradientLayer;
class UIPanGestureRecognizer;
class UITapGestureRecognizer;
class ZKBrightnessCursor;

// A bar from the colour at full brightness, on the left, to the same colour at the lowest brightness, on the right,
// with a cursor on it. The frame is larger than the bar, so that the cursor may overhang it. Main thread only.
class ZKBrightnessSlider final : public UIControl, public protocol::ZKBrightnessSlider {
    NS_CLASS(ZKBrightnessSlider)
public:
    ~ZKBrightnessSlider() override;

    std::shared_ptr<ZKBrightnessSlider> init();
    std::shared_ptr<ZKBrightnessSlider> initWithFrame(CGRect frame);
    std::shared_ptr<ZKBrightnessSlider> initWithCoder(const std::shared_ptr<NSCoder>& coder);

    // nil until a colour was set.
    std::optional<NSNumber> brightness() const override { return m_brightness; }
    // nil before a colour or a limit was set. From then on each call makes a new colour of the hue and saturation of
    // the one before and of the brightness in single precision, and keeps it.
    std::shared_ptr<UIColor> color() override;
    void setColor(std::shared_ptr<UIColor> color) override;
    std::optional<NSNumber> brightnessLowerLimit() const override { return m_brightnessLowerLimit; }
    // Takes the brightness anew from the colour; without one, from black.
    void setBrightnessLowerLimit(std::optional<NSNumber> limit) override;

    // Where the user last dragged to on any slider of the process, in that slider's coordinates.
    static CGPoint lastPanLocation();

    const std::shared_ptr<CAGradientLayer>& sliderLayer() const { return m_sliderLayer; }
    const std::shared_ptr<ZKBrightnessCursor>& brightnessCursor() const { return m_brightnessCursor; }

    UIEdgeInsets alignmentRectInsets() const override;
    CGRect alignmentRectForFrame(CGRect frame) const override;
    CGRect frameForAlignmentRect(CGRect alignmentRect) const override;
    void setFrame(CGRect frame) override;
    void layoutSubviews() override;

    // Assistive technology and the keyboard: in percent; left and up make it brighter.
    bool canBecomeFocused() const override;
    UIAccessibilityRole accessibilityRole() const override;
    std::string accessibilityLabel() const override;
    std::string accessibilityValue() const override;
    std::optional<UIAccessibilityRange> accessibilityRange() const override;
    bool accessibilityActivate() override;
    bool accessibilityStep(UIAccessibilityDirection direction, UIAccessibilityStep step) override;
    bool accessibilitySetValue(double percent) override;

private:
    ZKBrightnessSlider();
    void _init();

    void handleTap(const std::shared_ptr<UITapGestureRecognizer>& recognizer);
    void handlePan(const std::shared_ptr<UIPanGestureRecognizer>& recognizer);
    void tappedAtPoint(CGPoint point);
    void pannedToPoint_ended(CGPoint point, bool ended);
    void panLifted();
    void update_sendUpdates(CGPoint point, bool sendUpdates);
    void updateCursor();

    std::shared_ptr<ZKBrightnessCursor> m_brightnessCursor;
    std::shared_ptr<CAGradientLayer> m_sliderLayer;
    std::optional<NSNumber> m_brightness;
    std::shared_ptr<UIColor> m_color;
    std::optional<NSNumber> m_brightnessLowerLimit;
    bool m_needsToUpdateColor = false;
    CGRect m_controlFrame;   // the track of the cursor's centre
    CGRect m_renderingFrame; // the bar
};
