#pragma once

#include "platform/uikit/UIView.h"

// Bits; several may be joined.
enum UIControlEvents : unsigned {
    UIControlEventTouchDown = 1u << 0,
    UIControlEventTouchUpInside = 1u << 6,
    UIControlEventTouchCancel = 1u << 8,
    UIControlEventValueChanged = 1u << 12,
    UIControlEventEditingDidEnd = 1u << 18,
};

// A view that reports through target and action. By itself it sends TouchDown when a finger comes down, TouchUpInside
// when it is lifted no farther than 30 points from the control, nothing when it is lifted elsewhere, and TouchCancel
// when the finger is taken away; it is highlighted while the finger is that near. Disabled it takes touches and sends
// nothing. ValueChanged and the Editing events are sent by classes derived from it. Main thread only.
class UIControl : public UIView {
    NS_CLASS(UIControl)
public:
    ~UIControl() override;

    std::shared_ptr<UIControl> init();
    std::shared_ptr<UIControl> initWithFrame(CGRect frame);
    std::shared_ptr<UIControl> initWithCoder(const std::shared_ptr<NSCoder>& coder);

    // The target is weak; a nil target or action is ignored. Adding an equal pair again merges the events. The action
    // takes the control.
    void addTarget_action_forControlEvents(const std::shared_ptr<NSObject>& target, SEL action, unsigned events);
    // Calls the actions of every event in the mask, each pair once, in the order in which the pairs were added. The
    // control and the targets live until all were called, whatever the actions do.
    void sendActionsForControlEvents(unsigned events);

    // Enabled at first.
    bool isEnabled() const;
    virtual void setEnabled(bool enabled);
    // Whether a finger presses it now; a derived class shows that.
    bool isHighlighted() const;
    virtual void setHighlighted(bool highlighted);
    bool accessibilityIsEnabled() const override;

protected:
    UIControl();
    void touchesBegan_withEvent(const UITouchList& touches, UIEvent& event) override;
    void touchesMoved_withEvent(const UITouchList& touches, UIEvent& event) override;
    void touchesEnded_withEvent(const UITouchList& touches, UIEvent& event) override;
    void touchesCancelled_withEvent(const UITouchList& touches, UIEvent& event) override;

private:
    struct Pair {
        std::weak_ptr<NSObject> target;
        SEL action;
        unsigned events = 0;
    };
    std::vector<Pair> m_pairs; // in the order of addition
    bool m_enabled = true;
    bool m_highlighted = false;
};
