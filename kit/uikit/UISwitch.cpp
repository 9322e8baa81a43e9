#include "kit/uikit/UISwitch.h"

#include "kit/quartz/geometry.h"
#include "kit/uikit/GestureInternals.h"
#include "kit/uikit/PanReader.h"
#include "kit/uikit/appearance.h"
#include "platform/runtime/method.h"
#include "platform/uikit/UIPanGestureRecognizer.h"
#include "platform/uikit/UITapGestureRecognizer.h"

#include <cmath>

NS_CLASS_IMPLEMENTATION(UISwitch, UIControl, method<&UISwitch::handleTap>("handleTap:"),
                        method<&UISwitch::handlePan>("handlePan:"))

namespace {

constexpr CGSize size{51, 31};
constexpr double rim = 1.5; // of the track, round the knob
constexpr double knobDiameter = 28;
constexpr double pressedKnobWidth = 34; // under a finger the knob is wider
constexpr double animationSeconds = 0.25;
constexpr double disabledSwitchAlpha = 0.5;

// The knob's shadow: a few faint discs.
constexpr struct Shadow {
    double spread, drop, alpha;
} shadows[] = {{1.5, 2, 0.025}, {1, 1.5, 0.04}, {0.5, 1, 0.05}, {0.5, 0, 0.04}};

std::shared_ptr<CALayer> capsule(const std::shared_ptr<UIColor>& color) {
    const auto layer = CALayer::layer();
    layer->setBackgroundColor(color->CGColor());
    return layer;
}

// Up and down are the table's.
class PanAcross final : public seat::PanReader {
public:
    bool shouldBegin(const UIGestureRecognizer&) const override {
        return std::abs(movement().x) > std::abs(movement().y);
    }
};

void setCapsuleFrame(CALayer& layer, CGRect frame) {
    layer.setFrame(frame);
    layer.setCornerRadius(frame.size.height / 2);
}

} // namespace

UISwitch::UISwitch() = default;
UISwitch::~UISwitch() = default;

std::shared_ptr<UISwitch> UISwitch::init() { return initWithFrame(CGRectZero); }

std::shared_ptr<UISwitch> UISwitch::initWithFrame(CGRect frame) {
    if (!UIControl::initWithFrame({frame.origin, size})) return nullptr;
    layer()->setCornerRadius(size.height / 2); // the outline that a focus ring follows
    m_track = capsule(seat::appearance::markColor());
    setCapsuleFrame(*m_track, {{0, 0}, size});
    layer()->addSublayer(m_track);

    m_knob = CALayer::layer();
    for (const Shadow& shadow : shadows) m_knob->addSublayer(capsule(UIColor::colorWithWhite_alpha(0, shadow.alpha)));
    m_knob->addSublayer(capsule(UIColor::whiteColor()));
    layer()->addSublayer(m_knob);
    place(m_on);

    addGestureRecognizer(UITapGestureRecognizer::alloc()->initWithTarget_action(shared_from_this(), "handleTap:"));
    const auto pan = UIPanGestureRecognizer::alloc()->initWithTarget_action(shared_from_this(), "handlePan:");
    GestureInternals::setReader(*pan, std::make_unique<PanAcross>());
    addGestureRecognizer(pan);
    return self(this);
}

void UISwitch::setFrame(CGRect frame) { UIControl::setFrame({frame.origin, size}); }
CGSize UISwitch::sizeThatFits(CGSize) const { return size; }
CGSize UISwitch::intrinsicContentSize() const { return size; }
bool UISwitch::isOn() const { return m_on; }

void UISwitch::setOn_animated(bool on, bool animated) {
    m_on = on;
    show(on, animated);
}

// Puts every layer where it belongs for the state; inside an animation block they glide there.
void UISwitch::place(bool on) {
    m_shownOn = on;
    const double width = m_pressed ? pressedKnobWidth : knobDiameter;
    const double left = on ? size.width - rim - width : rim;
    m_knob->setFrame(CGRectMake(left, rim, width, knobDiameter));
    const CGRect disc{{0, 0}, {width, knobDiameter}};
    const auto& discs = m_knob->sublayers();
    for (std::size_t i = 0; i < std::size(shadows); ++i)
        setCapsuleFrame(*discs[i],
                        CGRectOffset(CGRectInset(disc, -shadows[i].spread, -shadows[i].spread), 0, shadows[i].drop));
    setCapsuleFrame(*discs.back(), disc);
    m_track->setBackgroundColor((on ? seat::appearance::switchOnColor() : seat::appearance::markColor())->CGColor());
}

void UISwitch::show(bool on, bool animated) {
    if (animated && window())
        animateWithDuration_animations(animationSeconds, [this, on] { place(on); });
    else
        place(on);
}

void UISwitch::setPressed(bool pressed) {
    if (pressed == m_pressed) return;
    m_pressed = pressed;
    show(m_shownOn, /*animated=*/true);
}

void UISwitch::change(bool on) {
    const bool changes = on != m_on;
    m_on = on;
    show(on, /*animated=*/true);
    if (changes) sendActionsForControlEvents(UIControlEventValueChanged);
}

void UISwitch::handleTap(const std::shared_ptr<UIGestureRecognizer>& recognizer) {
    if (recognizer && recognizer->state() == UIGestureRecognizerStateEnded && isEnabled()) change(!m_on);
}

void UISwitch::handlePan(const std::shared_ptr<UIPanGestureRecognizer>& recognizer) {
    if (!recognizer || !isEnabled()) return;
    const auto keep = shared_from_this();
    switch (recognizer->state()) {
    case UIGestureRecognizerStateBegan:
    case UIGestureRecognizerStateChanged: {
        setPressed(true);
        // The knob follows the finger to the other side, past the middle.
        const bool on = seat::PanReader::of(*recognizer).locationInView(this).x > size.width / 2;
        if (on != m_shownOn) show(on, /*animated=*/true);
        break;
    }
    case UIGestureRecognizerStateEnded: {
        const bool on = m_shownOn;
        setPressed(false);
        change(on);
        break;
    }
    default:
        setPressed(false);
        show(m_on, /*animated=*/true);
        break;
    }
}

void UISwitch::touchesBegan_withEvent(const UITouchList& touches, UIEvent& event) {
    if (isEnabled()) setPressed(true);
    UIControl::touchesBegan_withEvent(touches, event);
}

void UISwitch::touchesEnded_withEvent(const UITouchList& touches, UIEvent& event) {
    setPressed(false);
    UIControl::touchesEnded_withEvent(touches, event);
}

void UISwitch::touchesCancelled_withEvent(const UITouchList& touches, UIEvent& event) {
    setPressed(false);
    UIControl::touchesCancelled_withEvent(touches, event);
}

void UISwitch::setEnabled(bool enabled) {
    UIControl::setEnabled(enabled);
    setAlpha(enabled ? 1 : disabledSwitchAlpha);
}

bool UISwitch::canBecomeFocused() const { return isEnabled(); }
UIAccessibilityRole UISwitch::accessibilityRole() const { return UIAccessibilityRole::Switch; }
std::optional<bool> UISwitch::accessibilityIsOn() const { return m_on; }

bool UISwitch::accessibilityActivate() {
    if (!isEnabled()) return false;
    change(!m_on);
    return true;
}
