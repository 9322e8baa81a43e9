#pragma once

#include "platform/uikit/UIView.h"

enum UIControlEvents : unsigned {
    UIControlEventTouchDown = 1u << 0,
    UIControlEventTouchUpInside = 1u << 6,
    UIControlEventTouchCancel = 1u << 8,
    UIControlEventValueChanged = 1u << 12,
    UIControlEventEditingDidEnd = 1u << 18,
};

// A view that reports through target and action.
class UIControl : public UIView {
    NS_CLASS(UIControl)
public:
    ~UIControl() override;

    std::shared_ptr<UIControl> init();
    std::shared_ptr<UIControl> initWithFrame(CGRect frame);
    std::shared_ptr<UIControl> initWithCoder(const std::shared_ptr<NSCoder>& coder);

    // The target is weak. Adding an equal pair again merges the events. The action takes the control.
    void addTarget_action_forControlEvents(const std::shared_ptr<NSObject>& target, SEL action, unsigned events);
    void removeTarget_action_forControlEvents(const NSObject* target, SEL action, unsigned events);
    // In the order in which the pairs were added. The control and the targets live until all were called.
    void sendActionsForControlEvents(unsigned events);

    bool isEnabled() const;
    virtual void setEnabled(bool enabled);
    bool isHighlighted() const;
    virtual void setHighlighted(bool highlighted);

    void touchesBegan_withEvent(const UITouchList& touches, UIEvent& event) override;
    void touchesMoved_withEvent(const UITouchList& touches, UIEvent& event) override;
    void touchesEnded_withEvent(const UITouchList& touches, UIEvent& event) override;
    void touchesCancelled_withEvent(const UITouchList& touches, UIEvent& event) override;
    bool accessibilityIsEnabled() const override;

protected:
    UIControl();

private:
    struct Pair {
        std::weak_ptr<NSObject> target;
        SEL action;
        unsigned events = 0;
    };
    bool has(const NSObject* target, SEL action, unsigned events) const;

    std::vector<Pair> m_pairs; // in the order of addition
    bool m_enabled = true;
    bool m_highlighted = false;
};
