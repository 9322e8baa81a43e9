#pragma once

#include "kit/dispatch/ManualClock.h"
#include "kit/uikit/Touches.h"
#include "kit/uikit/WindowScene.h"
#include "platform/uikit/UIControl.h"
#include "platform/uikit/UIPanGestureRecognizer.h"
#include "platform/uikit/UITapGestureRecognizer.h"
#include "tests/support/RunLoop.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

class UIColor;
class ZKColorMapView;
class ZKColorPickerView;

inline constexpr double float09 = 0.9f; // what a limit of 0.9 is where the map has it
inline constexpr unsigned valueChanged = UIControlEventValueChanged;
inline constexpr unsigned editingEnd = UIControlEventEditingDidEnd;

// A window, a finger and a held clock around a view that is looked at.
class PickerScene {
public:
    explicit PickerScene(CGSize points = {400, 700}, double scale = 2);
    ~PickerScene();

    void show(const std::shared_ptr<UIView>& view, CGRect frame);
    // Runs the worker and the main queue until the map's field is in place and has faded in.
    bool waitForField(const ZKColorMapView& map);
    // A map keeps itself alive until its field is drawn: each one that a test makes is brought there in the end.
    std::shared_ptr<ZKColorMapView> keep(const std::shared_ptr<ZKColorMapView>& map);

    seat::ManualClock clock;
    testing_support::RunLoop loop;
    seat::WindowScene scene;
    seat::Touches finger{scene, &clock};

private:
    std::vector<std::weak_ptr<ZKColorMapView>> m_maps;
};

// Writes down the control events that it hears: "value editing-end value".
class EventLog final : public NSObject {
    NS_CLASS(EventLog)

    static std::shared_ptr<EventLog> listeningTo(UIControl& control);
    void note(const std::string& what);
    // What was noted since the last call.
    std::string take();

private:
    void valueChanged();
    void editingEnded();
    std::string m_text;
};

// Gestures as the window's own recognisers never make them, such as a pan that ends with its finger still down.
class ScriptedPan final : public UIPanGestureRecognizer {
    NS_CLASS(ScriptedPan)

    static std::shared_ptr<ScriptedPan> on(const std::shared_ptr<UIView>& view);
    // Without a place there is no finger.
    void send(UIGestureRecognizerState state, std::optional<CGPoint> place);
    std::size_t numberOfTouches() const override { return m_place ? 1 : 0; }
    CGPoint locationOfTouch_inView(std::size_t, const UIView*) const override { return m_place.value_or(CGPoint{}); }

private:
    std::optional<CGPoint> m_place;
};

class ScriptedTap final : public UITapGestureRecognizer {
    NS_CLASS(ScriptedTap)

    static std::shared_ptr<ScriptedTap> on(const std::shared_ptr<UIView>& view);
    void send(UIGestureRecognizerState state, std::optional<CGPoint> place);
    std::size_t numberOfTouches() const override { return m_place ? 1 : 0; }
    CGPoint locationOfTouch_inView(std::size_t, const UIView*) const override { return m_place.value_or(CGPoint{}); }

private:
    std::optional<CGPoint> m_place;
};

struct HSBA {
    double hue = -1;
    double saturation = -1;
    double brightness = -1;
    double alpha = -1;
};
HSBA hsba(const std::shared_ptr<UIColor>& color);

struct RGBA {
    double red = -1;
    double green = -1;
    double blue = -1;
    double alpha = -1;
};
RGBA rgba(const std::shared_ptr<UIColor>& color);

std::shared_ptr<UIColor> hsb(double hue, double saturation, double brightness);
std::shared_ptr<UIColor> rgb(double red, double green, double blue, double alpha = 1);
