#pragma once

#include "platform/uikit/UIControl.h"

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

private:
    UISwitch();
};
