#pragma once

#include "platform/uikit/UILabel.h"
#include "platform/uikit/UIView.h"

#include <memory>
#include <string>

// With the text alone, or with a value at the right.
enum UITableViewCellStyle : long { UITableViewCellStyleDefault = 0, UITableViewCellStyleValue1 = 1 };
// A mark at the right end: that the row leads somewhere, or that it is the chosen one.
enum class UITableViewCellAccessoryType { None, DisclosureIndicator, Checkmark };
// Whether a finger shows on the row.
enum class UITableViewCellSelectionStyle { None, Default };

// A row: text label at the left, detail label or accessory view at the right. The table sizes and places it; whoever
// makes it fills it. A cell that has left the screen may come back for another row, so that everything about a row is
// set each time. Main thread only.
class UITableViewCell : public UIView {
    NS_CLASS(UITableViewCell)
public:
    struct Internals; // the seat's way in, opaque to everybody else
    ~UITableViewCell() override;

    // "initWithStyle:reuseIdentifier:" to the runtime, by which table views make cells of registered classes.
    // `style` is a UITableViewCellStyle.
    std::shared_ptr<UITableViewCell> initWithStyle_reuseIdentifier(long style, const std::string& reuseIdentifier);

    // As it was made with.
    const std::string& reuseIdentifier() const;
    // Never nil.
    const std::shared_ptr<UILabel>& textLabel() const;
    // nil for the default style.
    const std::shared_ptr<UILabel>& detailTextLabel() const;
    // Holds both labels, beside the accessory.
    const std::shared_ptr<UIView>& contentView() const;
    // Kept at its own size at the right end, centred vertically; a label in it is laid out anew when it changes its
    // size.
    const std::shared_ptr<UIView>& accessoryView() const;
    virtual void setAccessoryView(std::shared_ptr<UIView> view);
    // A mark at the right end; an accessory view hides it.
    UITableViewCellAccessoryType accessoryType() const;
    void setAccessoryType(UITableViewCellAccessoryType type);
    // None: the row shows no press and takes no tap.
    UITableViewCellSelectionStyle selectionStyle() const;
    void setSelectionStyle(UITableViewCellSelectionStyle style);
    // Set by the table; they are looks and tell nobody.
    bool isSelected() const;
    virtual void setSelected_animated(bool selected, bool animated);
    bool isHighlighted() const;
    virtual void setHighlighted_animated(bool highlighted, bool animated);
    // Before the cell is handed out again; call the inherited one.
    virtual void prepareForReuse();

    void layoutSubviews() override;
    bool canBecomeFocused() const override;
    UIAccessibilityRole accessibilityRole() const override;
    std::string accessibilityLabel() const override;
    std::string accessibilityValue() const override;
    bool accessibilityIsEnabled() const override;
    bool accessibilityIsSelected() const override;
    bool accessibilityActivate() override;

protected:
    UITableViewCell();
    void subviewSizeChanged(UIView& subview) override;

private:
    struct State;
    std::unique_ptr<State> m_cell;
};
