#pragma once

#include "platform/uikit/UILabel.h"

namespace seat {

// The small grey text above or below a section, wrapped to as many lines as it takes.
class TableText final : public UILabel {
    NS_CLASS(TableText)
public:
    ~TableText() override;

    std::shared_ptr<TableText> initWithRole(UIAccessibilityRole role);
    static double heightOf(const std::string& text, double width);

    UIAccessibilityRole accessibilityRole() const override { return m_role; }

private:
    TableText() = default;

    UIAccessibilityRole m_role = UIAccessibilityRole::StaticText;
};

} // namespace seat
