#pragma once

#include "colourpicker/HSVColor.h"
#include "colourpicker/part_protocols.h"
#include "platform/foundation/time.h"
#include "platform/uikit/UIControl.h"

#include <memory>

// A colour picker as one control: a hue and saturation map, a brightness slider and a swatch, kept in agreement. It
// owns the colour, and sends one UIControlEventValueChanged for each gesture that a part reports as finished, none
// meanwhile; the colour is then the one that the part reported before its last report. Main thread only.
//
// The parts are made when they are first asked for, at the latest by the first layout. A part that a client sets is
// told the colour and heard, but placed by the client: it is not added to the view tree, and the one that it replaces
// stays there and is still heard.
class ZKColorPickerView final : public UIControl {
    NS_CLASS(ZKColorPickerView)
public:
    using ColorMapView = Adopting<UIControl, protocol::ZKColorMapView>;
    using BrightnessSlider = Adopting<UIControl, protocol::ZKBrightnessSlider>;
    using ColorInfoView = Adopting<UIView, protocol::ZKColorInfoView>;

    ~ZKColorPickerView() override;

    std::shared_ptr<ZKColorPickerView> init();
    std::shared_ptr<ZKColorPickerView> initWithFrame(CGRect frame);
    // Keeps the archive's background, where the others set white.
    std::shared_ptr<ZKColorPickerView> initWithCoder(const std::shared_ptr<NSCoder>& coder);

    // A new opaque colour at each call.
    std::shared_ptr<UIColor> color() const;
    // Sends no event and makes no part. A colour without hue, saturation and brightness changes nothing.
    void setColor(const std::shared_ptr<UIColor>& color);

    // Make the default part when there is none.
    const ColorMapView& colorMapView();
    const BrightnessSlider& brightnessSlider();
    const ColorInfoView& colorInfoView();
    // nil makes way for a new default part.
    void setColorMapView(ColorMapView view);
    void setBrightnessSlider(BrightnessSlider slider);
    void setColorInfoView(ColorInfoView view);

    // The time of day of the last report that came later than `waitTimeDuration` after the one before; of the making
    // until there is one. It holds no report back.
    platform::timeval lastDrawTime() const { return m_lastDrawTime; }
    platform::timeval waitTimeDuration() const { return m_waitTimeDuration; }

    // With constraints the picker places nothing itself.
    bool usingAutoLayout() const;
    void willMoveToSuperview(const std::shared_ptr<UIView>& superview) override;
    void layoutSubviews() override;

    UIAccessibilityRole accessibilityRole() const override;
    std::string accessibilityLabel() const override;

private:
    ZKColorPickerView();
    void _init();

    void hearColorMap();
    void hearBrightnessSlider();
    void brightnessChanged(const std::shared_ptr<UIControl>& sender);
    void colorMapColorChanged(const std::shared_ptr<UIControl>& sender);
    void sendActions();

    ColorInfoView m_colorInfoView;
    ColorMapView m_colorMapView;
    BrightnessSlider m_brightnessSlider;
    HSVColor m_currentHsvColor;
    platform::timeval m_lastDrawTime;
    platform::timeval m_waitTimeDuration;
};
