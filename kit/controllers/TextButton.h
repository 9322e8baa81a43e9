#pragma once

#include "platform/uikit/UIControl.h"
#include "platform/uikit/UILabel.h"

namespace seat {

// Tappable text, pale while it is pressed; sends touch-up-inside, also when it is activated by key or by assistive
// technology. With a chevron before the text it is the way back; on a dark panel it is white; as a row its text
// begins where that of a table's rows does, and is wrapped.
class TextButton final : public UIControl {
    NS_CLASS(TextButton)
public:
    ~TextButton() override;

    enum class Kind { Plain, Bold, Back, OnDark, Row };
    std::shared_ptr<TextButton> initWithTitle_kind(std::string title, Kind kind);
    // The way back may be its chevron alone, where there is no room for the text.
    void setTitleHidden(bool hidden);

    void setHighlighted(bool highlighted) override;
    CGSize sizeThatFits(CGSize size) const override;
    void layoutSubviews() override;
    void drawRect(CGRect rect) override;
    bool canBecomeFocused() const override { return isEnabled(); }
    UIAccessibilityRole accessibilityRole() const override { return UIAccessibilityRole::Button; }
    std::string accessibilityLabel() const override;
    bool accessibilityActivate() override;

private:
    TextButton() = default;
    double textWidth(double width) const;

    Kind m_kind = Kind::Plain;
    std::shared_ptr<UILabel> m_label;
};

} // namespace seat
