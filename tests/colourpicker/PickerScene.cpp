#include "tests/colourpicker/PickerScene.h"

#include "colourpicker/ZKColorMapView.h"
#include "kit/uikit/GestureInternals.h"
#include "platform/runtime/method.h"
#include "platform/uikit/UIColor.h"

#include <utility>

NS_CLASS_IMPLEMENTATION(EventLog, NSObject, method<&EventLog::valueChanged>("valueChanged"),
                        method<&EventLog::editingEnded>("editingEnded"))
NS_CLASS_IMPLEMENTATION(ScriptedPan, UIPanGestureRecognizer)
NS_CLASS_IMPLEMENTATION(ScriptedTap, UITapGestureRecognizer)

PickerScene::PickerScene(CGSize points, double scale) : scene(points, scale) {}

PickerScene::~PickerScene() {
    for (const auto& weak : m_maps) {
        const auto map = weak.lock();
        if (!map) continue;
        map->setTileSize(NSNumber::numberWithInt(16));
        map->setSaturationUpperLimit(NSNumber::numberWithFloat(0.9f));
        map->setFrame({{0, 0}, {32, 32}});
        scene.window()->addSubview(map);
        map->setNeedsLayout();
        map->layoutIfNeeded();
        waitForField(*map);
        map->removeFromSuperview();
    }
    // What the frames and the queue still hold goes while there is a clock and a loop.
    finger.settle();
    loop.runReady();
}

void PickerScene::show(const std::shared_ptr<UIView>& view, CGRect frame) {
    if (const auto map = std::dynamic_pointer_cast<ZKColorMapView>(view)) keep(map);
    view->setFrame(frame);
    scene.window()->addSubview(view);
    scene.prepareFrame();
}

bool PickerScene::waitForField(const ZKColorMapView& map) {
    const auto inPlace = [&map] {
        const auto layer = map.colorMapLayer();
        return layer && layer->superlayer();
    };
    return loop.runUntil(inPlace) && finger.settle();
}

std::shared_ptr<ZKColorMapView> PickerScene::keep(const std::shared_ptr<ZKColorMapView>& map) {
    m_maps.push_back(map);
    return map;
}

std::shared_ptr<EventLog> EventLog::listeningTo(UIControl& control) {
    auto log = alloc();
    control.addTarget_action_forControlEvents(log, "valueChanged", UIControlEventValueChanged);
    control.addTarget_action_forControlEvents(log, "editingEnded", UIControlEventEditingDidEnd);
    return log;
}

void EventLog::note(const std::string& what) {
    if (!m_text.empty()) m_text += ' ';
    m_text += what;
}

std::string EventLog::take() { return std::exchange(m_text, {}); }
void EventLog::valueChanged() { note("value"); }
void EventLog::editingEnded() { note("editing-end"); }

std::shared_ptr<ScriptedPan> ScriptedPan::on(const std::shared_ptr<UIView>& view) {
    auto pan = alloc();
    pan->initWithTarget_action(view, "handlePan:");
    return pan;
}

void ScriptedPan::send(UIGestureRecognizerState state, std::optional<CGPoint> place) {
    m_place = place;
    GestureInternals::setState(*this, state);
}

std::shared_ptr<ScriptedTap> ScriptedTap::on(const std::shared_ptr<UIView>& view) {
    auto tap = alloc();
    tap->initWithTarget_action(view, "handleTap:");
    return tap;
}

void ScriptedTap::send(UIGestureRecognizerState state, std::optional<CGPoint> place) {
    m_place = place;
    GestureInternals::setState(*this, state);
}

HSBA hsba(const std::shared_ptr<UIColor>& color) {
    HSBA result;
    if (color)
        color->getHue_saturation_brightness_alpha(&result.hue, &result.saturation, &result.brightness, &result.alpha);
    return result;
}

RGBA rgba(const std::shared_ptr<UIColor>& color) {
    RGBA result;
    if (color) color->getRed_green_blue_alpha(&result.red, &result.green, &result.blue, &result.alpha);
    return result;
}

std::shared_ptr<UIColor> hsb(double hue, double saturation, double brightness) {
    return UIColor::colorWithHue_saturation_brightness_alpha(hue, saturation, brightness, 1);
}

std::shared_ptr<UIColor> rgb(double red, double green, double blue, double alpha) {
    return UIColor::colorWithRed_green_blue_alpha(red, green, blue, alpha);
}
