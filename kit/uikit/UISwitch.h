#pragma once

#include "platform/uikit/UIControl.h"
#include "platform/uikit/UIPanGestureRecognizer.h"

// On or off. A tap or a drag across sends value-changed.
class UISwitch final : public UIControl {
    NS_CLASS(UISwitch)
public:
    ~UISwitch() override;

    std::shared_ptr<UISwitch> init();
    std::shared_ptr<UISwitch> initWithFrame(CGRect frame); // the size is fixed

    bool isOn() const;
    // Sends nothing.
    void setOn_animated(bool on, bool animated);

    void setEnabled(bool enabled) override;
    bool canBecomeFocused() const override;
    UIAccessibilityRole accessibilityRole() const override;
    std::optional<bool> accessibilityIsOn() const override;
    bool accessibilityActivate() override;

    CGSize sizeThatFits(CGSize size) const override;
    CGSize intrinsicContentSize() const override;
    void setFrame(CGRect frame) override;
    void touchesBegan_withEvent(const UITouchList& touches, UIEvent& event) override;
    void touchesEnded_withEvent(const UITouchList& touches, UIEvent& event) override;
    void touchesCancelled_withEvent(const UITouchList& touches, UIEvent& event) override;

private:
    UISwitch();
    void handleTap(const std::shared_ptr<UIGestureRecognizer>& recognizer);
    void handlePan(const std::shared_ptr<UIPanGestureRecognizer>& recognizer);
    void change(bool on);
    void setPressed(bool pressed);
    void show(bool on, bool animated);
    void place(bool on);

    std::shared_ptr<CALayer> m_track; // green or grey
    std::shared_ptr<CALayer> m_knob;  // with its shadow
    bool m_on = false;
    bool m_shownOn = false; // while a finger drags, where the knob is
    bool m_pressed = false;
};
