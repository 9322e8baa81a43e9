#pragma once

#include "platform/uikit/UILabel.h"

#include <memory>
#include <string>

namespace app {

// How something is: its name at the left, its state at the right, and below them, in small print, what to do about it.
// Nothing of it is tapped.
class StatusRow final : public UIView {
    NS_CLASS(StatusRow)
public:
    ~StatusRow() override;

    enum class Mood { Plain, Trouble };
    std::shared_ptr<StatusRow> initWithName(const std::string& name);
    // `advice` may be empty.
    void show(const std::string& state, Mood mood, const std::string& advice);

    CGSize sizeThatFits(CGSize size) const override;
    void layoutSubviews() override;
    UIAccessibilityRole accessibilityRole() const override { return UIAccessibilityRole::StaticText; }
    std::string accessibilityLabel() const override;

private:
    StatusRow() = default;
    double adviceHeight(double width) const;
    // The state stands below the name where both find no room on a line.
    bool isStacked(double room) const;
    double lineHeight(double room) const; // of name and state

    std::shared_ptr<UILabel> m_name;
    std::shared_ptr<UILabel> m_state;
    std::shared_ptr<UILabel> m_advice;
};

} // namespace app
