#pragma once

#include "platform/uikit/UILabel.h"
#include "platform/uikit/UIView.h"

#include <memory>
#include <string>

enum UITableViewCellStyle : long { UITableViewCellStyleDefault = 0, UITableViewCellStyleValue1 = 1 };
enum class UITableViewCellAccessoryType { None, DisclosureIndicator, Checkmark };
enum class UITableViewCellSelectionStyle { None, Default };

// A row: text label at the left, detail label or accessory view at the right.
class UITableViewCell : public UIView {
    NS_CLASS(UITableViewCell)
public:
    ~UITableViewCell() override;

    // "initWithStyle:reuseIdentifier:" to the runtime, by which table views make cells of registered classes.
    std::shared_ptr<UITableViewCell> initWithStyle_reuseIdentifier(long style, const std::string& reuseIdentifier);

    const std::string& reuseIdentifier() const;
    const std::shared_ptr<UILabel>& textLabel() const;
    // nil for the default style.
    const std::shared_ptr<UILabel>& detailTextLabel() const;
    const std::shared_ptr<UIView>& contentView() const;
    // Kept at its own size at the right end, centred vertically; a label in it is laid out anew when it changes its
    // size.
    const std::shared_ptr<UIView>& accessoryView() const;
    virtual void setAccessoryView(std::shared_ptr<UIView> view);
    UITableViewCellAccessoryType accessoryType() const;
    void setAccessoryType(UITableViewCellAccessoryType type);
    UITableViewCellSelectionStyle selectionStyle() const;
    void setSelectionStyle(UITableViewCellSelectionStyle style);
    bool isSelected() const;
    virtual void setSelected_animated(bool selected, bool animated);
    bool isHighlighted() const;
    virtual void setHighlighted_animated(bool highlighted, bool animated);
    virtual void prepareForReuse();

    void layoutSubviews() override;
    void subviewSizeChanged(UIView& subview) override;
    bool canBecomeFocused() const override;
    UIAccessibilityRole accessibilityRole() const override;
    std::string accessibilityLabel() const override;
    std::string accessibilityValue() const override;
    bool accessibilityIsEnabled() const override;
    bool accessibilityIsSelected() const override;
    bool accessibilityActivate() override;

protected:
    UITableViewCell();

private:
    friend struct CellInternals; // kit/tables/CellInternals.h
    struct State;
    std::unique_ptr<State> m_cell;
};
