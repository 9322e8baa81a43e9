// The picker's parts: the default ones, made when first asked for, and those of a client.

#include "colourpicker/ZKBrightnessSlider.h"
#include "colourpicker/ZKColorInfoView.h"
#include "colourpicker/ZKColorMapView.h"
#include "colourpicker/ZKColorPickerView.h"

#include <utility>

namespace {
constexpr double saturationUpperLimit = 0.9;
constexpr int tileSize = 16;
constexpr double brightnessLowerLimit = 0.4;
} // namespace

const ZKColorPickerView::ColorMapView& ZKColorPickerView::colorMapView() {
    if (m_colorMapView) return m_colorMapView;
    const auto map = ZKColorMapView::colorMapWithFrame_saturationUpperLimit(CGRectZero, saturationUpperLimit);
    map->setTileSize(NSNumber::numberWithInt(tileSize));
    m_colorMapView = map;
    map->setBrightness(m_currentHsvColor.v);
    map->setColor(color());
    hearColorMap();
    map->setBackgroundColor(UIColor::redColor());
    addSubview(map);
    return m_colorMapView;
}

const ZKColorPickerView::BrightnessSlider& ZKColorPickerView::brightnessSlider() {
    if (m_brightnessSlider) return m_brightnessSlider;
    const auto slider = ZKBrightnessSlider::alloc()->init();
    m_brightnessSlider = slider;
    slider->setBrightnessLowerLimit(NSNumber::numberWithDouble(brightnessLowerLimit));
    slider->setColor(color());
    hearBrightnessSlider();
    addSubview(slider);
    return m_brightnessSlider;
}

const ZKColorPickerView::ColorInfoView& ZKColorPickerView::colorInfoView() {
    if (m_colorInfoView) return m_colorInfoView;
    const auto info = ZKColorInfoView::alloc()->init();
    m_colorInfoView = info;
    info->setColor(color());
    addSubview(info);
    return m_colorInfoView;
}

void ZKColorPickerView::setColorMapView(ColorMapView view) {
    m_colorMapView = std::move(view);
    if (!m_colorMapView) return;
    m_colorMapView->setBrightness(m_currentHsvColor.v);
    m_colorMapView->setColor(color());
    hearColorMap();
}

void ZKColorPickerView::setBrightnessSlider(BrightnessSlider slider) {
    m_brightnessSlider = std::move(slider);
    if (!m_brightnessSlider) return;
    m_brightnessSlider->setColor(color());
    hearBrightnessSlider();
}

void ZKColorPickerView::setColorInfoView(ColorInfoView view) {
    m_colorInfoView = std::move(view);
    if (m_colorInfoView) m_colorInfoView->setColor(color());
}

void ZKColorPickerView::hearColorMap() {
    const auto& control = m_colorMapView.view();
    control->addTarget_action_forControlEvents(self(this), "colorMapColorChanged:", UIControlEventValueChanged);
    control->addTarget_action_forControlEvents(self(this), "sendActions", UIControlEventEditingDidEnd);
}

void ZKColorPickerView::hearBrightnessSlider() {
    const auto& control = m_brightnessSlider.view();
    control->addTarget_action_forControlEvents(self(this), "brightnessChanged:", UIControlEventValueChanged);
    control->addTarget_action_forControlEvents(self(this), "sendActions", UIControlEventEditingDidEnd);
}
