#pragma once

// The pieces that a table cell is made of.

#include "kit/tables/CellInternals.h"
#include "platform/uikit/UILabel.h"

namespace seat {

// The row's part of its card: filled, rounded at the ends of the card, with a separator towards the next row.
class CellCard final : public UIView {
    NS_CLASS(CellCard)
public:
    ~CellCard() override;

    std::shared_ptr<CellCard> initWithColor(std::shared_ptr<UIColor> color, bool hasSeparator);
    void setPlace(CellPlace place);
    void drawRect(CGRect rect) override;

private:
    CellCard() = default;

    CellPlace m_place;
    std::shared_ptr<UIColor> m_color;
    bool m_hasSeparator = false;
};

// A chevron or a check mark.
class CellMark final : public UIView {
    NS_CLASS(CellMark)
public:
    ~CellMark() override;

    std::shared_ptr<CellMark> initWithType(UITableViewCellAccessoryType type);
    UITableViewCellAccessoryType type() const { return m_type; }
    void drawRect(CGRect rect) override;

private:
    CellMark() = default;

    UITableViewCellAccessoryType m_type = UITableViewCellAccessoryType::None;
};

// A label whose text its cell tells to assistive technology, and which therefore is silent itself.
class CellLabel final : public UILabel {
    NS_CLASS(CellLabel)
public:
    ~CellLabel() override;

    std::shared_ptr<CellLabel> initWithFrame(CGRect frame);
    UIAccessibilityRole accessibilityRole() const override { return UIAccessibilityRole::None; }

private:
    CellLabel() = default;
};

// The labels of a row: the title at the left, the value, where there is one, at the right. Text that finds no room is
// set smaller, down to four fifths, before it is cut; where the user wants larger text the value goes below the title
// instead, both wrapped.
class CellContent final : public UIView {
    NS_CLASS(CellContent)
public:
    ~CellContent() override;

    std::shared_ptr<CellContent> initWithValue(bool hasValue);
    const std::shared_ptr<UILabel>& title() const { return m_title.label; }
    const std::shared_ptr<UILabel>& value() const { return m_value.label; } // nil when there is none
    void layoutSubviews() override;

    // On one line, with the margin before it.
    double widthOfLine() const;
    // Of the texts alone, at a width that the margin is part of.
    double textHeight(double width) const;
    // Room that is left free at the lower end.
    void setSpaceBelow(double points);

private:
    // A label and the font that it was given, whatever it is shown in.
    struct Text {
        std::shared_ptr<UILabel> label;
        std::shared_ptr<UIFont> given;
        std::shared_ptr<UIFont> shown;

        bool isEmpty() const { return !label || label->text().empty(); }
        double width() const;
        double wholeWidth() const;         // not made smaller, in one line
        double height(double width) const; // wrapped
        void setScale(double scale);
        void setLines(int lines) const;
        std::shared_ptr<UIFont> font() const { return label->font() == shown ? given : label->font(); }
    };
    CellContent() = default;
    bool isStacked(double width) const;
    void layOutStacked(double room);

    Text m_title;
    Text m_value;
    double m_spaceBelow = 0;
};

} // namespace seat
