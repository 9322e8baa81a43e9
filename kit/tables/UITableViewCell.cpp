#include "platform/uikit/UITableViewCell.h"

#include "kit/foundation/translation.h"
#include "kit/quartz/geometry.h"
#include "kit/quartz/text_size.h"
#include "kit/tables/CellInternals.h"
#include "kit/tables/CellParts.h"
#include "kit/uikit/appearance.h"
#include "platform/runtime/method.h"
#include "platform/uikit/UITableView.h"

#include <algorithm>

using namespace seat::appearance;

NS_CLASS_IMPLEMENTATION(UITableViewCell, UIView,
                        method<&UITableViewCell::initWithStyle_reuseIdentifier>("initWithStyle:reuseIdentifier:"))

struct UITableViewCell::State {
    std::string reuseIdentifier;
    std::shared_ptr<seat::CellCard> card;
    std::shared_ptr<seat::CellCard> pressedCard; // over the card, seen while the row is pressed or selected
    std::shared_ptr<UIView> contentView;
    std::shared_ptr<seat::CellContent> content; // the same view
    std::shared_ptr<UIView> accessoryView;
    std::shared_ptr<seat::CellMark> mark; // nil without an accessory type
    UITableViewCellSelectionStyle selectionStyle = UITableViewCellSelectionStyle::Default;
    bool isSelected = false;
    bool isHighlighted = false;
    bool isLayingOut = false;
    std::weak_ptr<UITableView> table;

    void showPressed(bool animated) const {
        const bool isPressed = selectionStyle != UITableViewCellSelectionStyle::None && (isSelected || isHighlighted);
        const double alpha = isPressed ? 1 : 0;
        if (pressedCard->alpha() == alpha) return;
        const auto show = [this, alpha] { pressedCard->setAlpha(alpha); };
        if (animated)
            UIView::animateWithDuration_animations(0.25, show);
        else
            show();
    }
    // What stands at the right end, if anything.
    std::shared_ptr<UIView> accessory() const { return accessoryView ? accessoryView : mark; }

    // A label there has the size that its text had when it was set.
    CGSize accessorySize() const {
        if (!accessory()) return {};
        const bool isText = seat::textGeneration() > 0 && dynamic_cast<const UILabel*>(accessory().get());
        return isText ? accessory()->sizeThatFits({1e6, 1e6}) : accessory()->bounds().size;
    }
    // Beside the accessory.
    double contentWidth(double width) const {
        return std::max(0.0, width - sideMargin - (accessory() ? accessorySize().width + labelGap : 0));
    }
    // A text at the right end goes below the title when that is larger and finds no room.
    bool hasAccessoryBelow(double width) const {
        return seat::textScale() > 1 && dynamic_cast<const UILabel*>(accessory().get()) &&
               content->widthOfLine() > contentWidth(width);
    }
    double heightFor(double width) const {
        if (hasAccessoryBelow(width))
            return heightAroundText(content->textHeight(width - sideMargin) + accessorySize().height);
        return heightAroundText(content->textHeight(contentWidth(width)));
    }
    void layOutAccessory(CGSize size) const {
        const CGSize own = accessorySize();
        if (!hasAccessoryBelow(size.width)) {
            const double left = size.width - sideMargin - own.width;
            const CGRect frame =
                CGRectMake(roundToPixel(left), roundToPixel((size.height - own.height) / 2), own.width, own.height);
            accessory()->setFrame(inDirection(frame, size.width));
            return;
        }
        const double text = std::ceil(content->textHeight(size.width - sideMargin));
        const double top = std::floor((size.height - text - own.height) / 2) + text;
        const double width = std::min(own.width, size.width - 2 * sideMargin);
        accessory()->setFrame(inDirection(CGRectMake(sideMargin, top, width, own.height), size.width));
    }
};

UITableViewCell::UITableViewCell() : m_cell(std::make_unique<State>()) {}
UITableViewCell::~UITableViewCell() = default;

std::shared_ptr<UITableViewCell> UITableViewCell::initWithStyle_reuseIdentifier(long style,
                                                                                const std::string& reuseIdentifier) {
    if (!UIView::initWithFrame(CGRectMake(0, 0, 320, rowHeight))) return nullptr;
    m_cell->reuseIdentifier = reuseIdentifier;
    m_cell->card = seat::CellCard::alloc()->initWithColor(cardColor(), /*hasSeparator=*/true);
    m_cell->pressedCard = seat::CellCard::alloc()->initWithColor(pressedColor(), /*hasSeparator=*/false);
    m_cell->pressedCard->setAlpha(0);
    m_cell->content = seat::CellContent::alloc()->initWithValue(style == UITableViewCellStyleValue1);
    m_cell->contentView = m_cell->content;
    addSubview(m_cell->card);
    addSubview(m_cell->pressedCard);
    addSubview(m_cell->contentView);
    return self(this);
}

const std::string& UITableViewCell::reuseIdentifier() const { return m_cell->reuseIdentifier; }
const std::shared_ptr<UILabel>& UITableViewCell::textLabel() const { return m_cell->content->title(); }
const std::shared_ptr<UILabel>& UITableViewCell::detailTextLabel() const { return m_cell->content->value(); }
const std::shared_ptr<UIView>& UITableViewCell::contentView() const { return m_cell->contentView; }
const std::shared_ptr<UIView>& UITableViewCell::accessoryView() const { return m_cell->accessoryView; }

void UITableViewCell::setAccessoryView(std::shared_ptr<UIView> view) {
    if (view != m_cell->accessoryView) {
        // Another cell may have taken it meanwhile.
        if (m_cell->accessoryView && m_cell->accessoryView->superview().get() == this)
            m_cell->accessoryView->removeFromSuperview();
        m_cell->accessoryView = std::move(view);
    }
    if (m_cell->accessoryView && m_cell->accessoryView->superview().get() != this) addSubview(m_cell->accessoryView);
    if (m_cell->mark) m_cell->mark->setHidden(m_cell->accessoryView != nullptr);
    setNeedsLayout();
}

UITableViewCellAccessoryType UITableViewCell::accessoryType() const {
    return m_cell->mark ? m_cell->mark->type() : UITableViewCellAccessoryType::None;
}

void UITableViewCell::setAccessoryType(UITableViewCellAccessoryType type) {
    if (type == accessoryType()) return;
    if (m_cell->mark) m_cell->mark->removeFromSuperview();
    m_cell->mark = nullptr;
    if (type != UITableViewCellAccessoryType::None) {
        m_cell->mark = seat::CellMark::alloc()->initWithType(type);
        m_cell->mark->setHidden(m_cell->accessoryView != nullptr);
        addSubview(m_cell->mark);
    }
    setNeedsLayout();
}

UITableViewCellSelectionStyle UITableViewCell::selectionStyle() const { return m_cell->selectionStyle; }

void UITableViewCell::setSelectionStyle(UITableViewCellSelectionStyle style) {
    m_cell->selectionStyle = style;
    m_cell->showPressed(/*animated=*/false);
}

bool UITableViewCell::isSelected() const { return m_cell->isSelected; }

void UITableViewCell::setSelected_animated(bool selected, bool animated) {
    m_cell->isSelected = selected;
    m_cell->showPressed(animated);
}

bool UITableViewCell::isHighlighted() const { return m_cell->isHighlighted; }

void UITableViewCell::setHighlighted_animated(bool highlighted, bool animated) {
    m_cell->isHighlighted = highlighted;
    m_cell->showPressed(animated);
}

void UITableViewCell::prepareForReuse() {
    setSelected_animated(false, /*animated=*/false);
    setHighlighted_animated(false, /*animated=*/false);
    setAlpha(1);
}

void UITableViewCell::layoutSubviews() {
    m_cell->isLayingOut = true;
    const CGSize size = bounds().size;
    m_cell->card->setFrame(bounds());
    m_cell->pressedCard->setFrame(bounds());
    if (m_cell->accessory()) m_cell->layOutAccessory(size);
    const bool isBelow = m_cell->hasAccessoryBelow(size.width);
    m_cell->content->setSpaceBelow(isBelow ? m_cell->accessorySize().height : 0);
    const double width = isBelow ? size.width - sideMargin : m_cell->contentWidth(size.width);
    m_cell->contentView->setFrame(inDirection(CGRectMake(0, 0, width, size.height), size.width));
    m_cell->isLayingOut = false;
    if (seat::textScale() <= 1 || m_cell->heightFor(size.width) == size.height) return;
    if (const auto table = m_cell->table.lock()) table->setNeedsLayout();
}

void UITableViewCell::subviewSizeChanged(UIView& subview) {
    if (&subview == m_cell->accessoryView.get() && !m_cell->isLayingOut) setNeedsLayout();
}

bool UITableViewCell::canBecomeFocused() const {
    return m_cell->selectionStyle != UITableViewCellSelectionStyle::None && isUserInteractionEnabled() &&
           !m_cell->table.expired();
}

UIAccessibilityRole UITableViewCell::accessibilityRole() const { return UIAccessibilityRole::ListItem; }

std::string UITableViewCell::accessibilityLabel() const {
    const std::string given = UIView::accessibilityLabel();
    return given.empty() ? textLabel()->text() : given;
}

std::string UITableViewCell::accessibilityValue() const {
    if (detailTextLabel()) return detailTextLabel()->text();
    if (!m_cell->accessoryView) return {};
    if (const auto on = m_cell->accessoryView->accessibilityIsOn())
        return *on ? seat::translated("On") : seat::translated("Off");
    return m_cell->accessoryView->accessibilityLabel();
}

bool UITableViewCell::accessibilityIsEnabled() const { return isUserInteractionEnabled() && textLabel()->isEnabled(); }

bool UITableViewCell::accessibilityIsSelected() const {
    return m_cell->isSelected || accessoryType() == UITableViewCellAccessoryType::Checkmark;
}

bool UITableViewCell::accessibilityActivate() {
    const auto table = m_cell->table.lock();
    if (!table || !isUserInteractionEnabled()) return false;
    const auto path = table->indexPathForCell(this);
    if (!path) return false;
    table->activateRow(path);
    return true;
}

void CellInternals::setPlace(UITableViewCell& cell, seat::CellPlace place) {
    cell.m_cell->card->setPlace(place);
    cell.m_cell->pressedCard->setPlace(place);
}

void CellInternals::setTable(UITableViewCell& cell, const std::shared_ptr<UITableView>& table) {
    cell.m_cell->table = table;
}

double CellInternals::heightFor(const UITableViewCell& cell, double width) { return cell.m_cell->heightFor(width); }

void CellInternals::fadeContentIn(UITableViewCell& cell) {
    const auto content = cell.m_cell->contentView;
    const auto accessory = cell.m_cell->accessory();
    content->setAlpha(0);
    if (accessory) accessory->setAlpha(0);
    UIView::animateWithDuration_animations(0.25, [&] {
        content->setAlpha(1);
        if (accessory) accessory->setAlpha(1);
    });
}
