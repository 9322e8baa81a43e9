#pragma once

#include "platform/uikit/UIControl.h"

#include <string>

namespace seat {

// Lies over a link's text, which shines through: what is tapped, focused and named.
class MessageLink final : public UIControl {
    NS_CLASS(MessageLink)
public:
    ~MessageLink() override;

    std::shared_ptr<MessageLink> initWithText_address(std::string text, std::string address);

    void setHighlighted(bool highlighted) override;
    bool canBecomeFocused() const override { return true; }
    UIAccessibilityRole accessibilityRole() const override { return UIAccessibilityRole::Button; }
    std::string accessibilityHint() const override { return m_address; }
    bool accessibilityActivate() override;

private:
    MessageLink() = default;
    void opened();

    std::string m_address;
};

} // namespace seat
