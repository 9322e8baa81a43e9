#include "kit/tables/CellParts.h"

#include "kit/quartz/geometry.h"
#include "kit/quartz/text_runs.h"
#include "kit/quartz/text_size.h"
#include "kit/seat.h"
#include "kit/uikit/appearance.h"
#include "platform/uikit/UIBezierPath.h"
#include "platform/uikit/UIImage.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace seat {

using namespace appearance;

NS_CLASS_IMPLEMENTATION(CellCard, UIView)
NS_CLASS_IMPLEMENTATION(CellMark, UIView)
NS_CLASS_IMPLEMENTATION(CellLabel, UILabel)
NS_CLASS_IMPLEMENTATION(CellContent, UIView)

CellCard::~CellCard() = default;
CellMark::~CellMark() = default;
CellLabel::~CellLabel() = default;
CellContent::~CellContent() = default;

std::shared_ptr<CellCard> CellCard::initWithColor(std::shared_ptr<UIColor> color, bool hasSeparator) {
    if (!UIView::initWithFrame(CGRectZero)) return nullptr;
    m_color = std::move(color);
    m_hasSeparator = hasSeparator;
    setUserInteractionEnabled(false);
    return self(this);
}

void CellCard::setPlace(CellPlace place) {
    if (m_place == place) return;
    m_place = place;
    setNeedsDisplay();
}

void CellCard::drawRect(CGRect) {
    const CGRect area = bounds();
    const unsigned corners = (m_place.isFirst ? UIRectCornerTopLeft | UIRectCornerTopRight : 0u) |
                             (m_place.isLast ? UIRectCornerBottomLeft | UIRectCornerBottomRight : 0u);
    const CGContextRef context = UIGraphicsGetCurrentContext();
    if (m_place.isGrouped && corners != 0) {
        m_color->setFill();
        UIBezierPath::bezierPathWithRoundedRect_byRoundingCorners_cornerRadii(
            area, corners, CGSizeMake(cardCornerRadius, cardCornerRadius))
            ->fill();
    } else {
        CGContextSetFillColorWithColor(context, m_color->CGColor());
        CGContextFillRect(context, area);
    }
    if (!m_hasSeparator || (m_place.isGrouped && m_place.isLast)) return;
    CGContextSetFillColorWithColor(context, separatorColor()->CGColor());
    const CGRect line = CGRectMake(sideMargin, area.size.height - hairline(), area.size.width - sideMargin, hairline());
    CGContextFillRect(context, inDirection(line, area.size.width));
}

std::shared_ptr<CellMark> CellMark::initWithType(UITableViewCellAccessoryType type) {
    const bool isCheck = type == UITableViewCellAccessoryType::Checkmark;
    if (!UIView::initWithFrame(isCheck ? CGRectMake(0, 0, 16, 14) : CGRectMake(0, 0, 8, 14))) return nullptr;
    m_type = type;
    setUserInteractionEnabled(false);
    return self(this);
}

void CellMark::drawRect(CGRect) {
    const auto path = UIBezierPath::bezierPath();
    if (m_type == UITableViewCellAccessoryType::Checkmark) {
        path->moveToPoint({1.5, 7.5});
        path->addLineToPoint({5.75, 11.75});
        path->addLineToPoint({14.5, 2.25});
        tintColor()->setStroke();
    } else {
        const double outer = isRightToLeft() ? 7 : 1;
        path->moveToPoint({outer, 1.5});
        path->addLineToPoint({isRightToLeft() ? 1.5 : 6.5, 7});
        path->addLineToPoint({outer, 12.5});
        markColor()->setStroke();
    }
    path->setLineWidth(2);
    path->stroke();
}

std::shared_ptr<CellLabel> CellLabel::initWithFrame(CGRect frame) {
    return UILabel::initWithFrame(frame) ? self(this) : nullptr;
}

std::shared_ptr<CellContent> CellContent::initWithValue(bool hasValue) {
    if (!UIView::initWithFrame(CGRectZero)) return nullptr;
    m_title.label = CellLabel::alloc()->initWithFrame(CGRectZero);
    m_title.label->setTextAlignment(startAlignment());
    addSubview(m_title.label);
    if (hasValue) {
        m_value.label = CellLabel::alloc()->initWithFrame(CGRectZero);
        m_value.label->setTextColor(secondaryTextColor());
        m_value.label->setTextAlignment(endAlignment());
        addSubview(m_value.label);
    }
    return self(this);
}

double CellContent::Text::width() const { return std::ceil(label->sizeThatFits({1e6, 1e6}).width); }

double CellContent::Text::wholeWidth() const {
    return isEmpty() ? 0
                     : std::ceil(measureText(textRuns(label->text(), font(), nullptr), 1e6, /*lines=*/1).size.width);
}

void CellContent::Text::setScale(double scale) {
    // A font that is not the one shown here was given by somebody since.
    if (label->font() != shown) given = label->font();
    const double size = std::floor(given->pointSize() * scale * 2) / 2;
    shown = scale >= 1 ? given : given->isBold() ? UIFont::boldSystemFontOfSize(size) : UIFont::systemFontOfSize(size);
    if (label->font() != shown) label->setFont(shown);
}

double CellContent::Text::height(double width) const {
    return isEmpty() ? 0 : measureText(textRuns(label->text(), font(), nullptr), width, /*lines=*/0).size.height;
}

void CellContent::Text::setLines(int lines) const {
    if (!label || label->numberOfLines() == lines) return;
    label->setNumberOfLines(lines);
}

// As it would be in its own font: what is shown may still have been made smaller to fit, when text was smaller.
double CellContent::widthOfLine() const {
    return sideMargin + m_title.wholeWidth() + (m_value.isEmpty() ? 0 : labelGap + m_value.wholeWidth());
}

bool CellContent::isStacked(double width) const { return textScale() > 1 && widthOfLine() > width; }

double CellContent::textHeight(double width) const {
    const double room = std::max(1.0, width - sideMargin);
    if (!isStacked(width)) return std::max(m_title.height(1e6), m_value.height(1e6));
    return m_title.height(room) + m_value.height(room);
}

void CellContent::setSpaceBelow(double points) {
    if (std::exchange(m_spaceBelow, points) != points) setNeedsLayout();
}

// The title's lines, and below them the value's.
void CellContent::layOutStacked(double room) {
    const double titleHeight = std::ceil(m_title.height(room));
    const double valueHeight = std::ceil(m_value.height(room));
    const double height = bounds().size.height - m_spaceBelow;
    const double top = std::max(0.0, std::floor((height - titleHeight - valueHeight) / 2));
    const double width = bounds().size.width;
    m_title.label->setFrame(inDirection(CGRectMake(sideMargin, top, room, titleHeight), width));
    if (!m_value.label) return;
    m_value.label->setTextAlignment(startAlignment());
    m_value.label->setFrame(inDirection(CGRectMake(sideMargin, top + titleHeight, room, valueHeight), width));
}

void CellContent::layoutSubviews() {
    constexpr double leastScale = 0.8;
    CGSize size = bounds().size;
    const double room = std::max(0.0, size.width - sideMargin);
    const bool isLarge = isStacked(size.width);
    if (isLarge) {
        m_title.setScale(1);
        if (m_value.label) m_value.setScale(1);
        m_title.setLines(0);
        m_value.setLines(0);
        return layOutStacked(room);
    }
    if (m_value.label) m_value.label->setTextAlignment(endAlignment());
    size.height -= m_spaceBelow;
    const double gap = m_value.isEmpty() ? 0 : labelGap;
    const auto setScale = [&](double scale) {
        m_title.setScale(scale);
        if (m_value.label) m_value.setScale(scale);
    };
    setScale(1);
    const auto wanted = [&] { return m_title.width() + (m_value.isEmpty() ? 0 : m_value.width()); };
    // Letters have whole sizes in pixels, so that a text may stay wider than its share.
    for (double scale = (room - gap) / wanted(); wanted() + gap > room; scale -= 0.03) {
        setScale(std::max(leastScale, scale));
        if (scale <= leastScale) break;
    }

    double titleWidth = room;
    double valueWidth = 0;
    if (!m_value.isEmpty()) {
        // The title goes first, but leaves the value a third of the row.
        const double left = room - gap - m_title.width();
        valueWidth = std::max(0.0, std::min(m_value.width(), std::max(left, std::floor(room / 3))));
        m_value.label->setFrame(
            inDirection(CGRectMake(size.width - valueWidth, 0, valueWidth, size.height), size.width));
        titleWidth = std::max(0.0, room - valueWidth - gap);
    }
    m_title.label->setFrame(inDirection(CGRectMake(sideMargin, 0, titleWidth, size.height), size.width));
    // What is still too long goes on a second line; small as it is, a row has room for two.
    m_title.setLines(m_title.width() > titleWidth ? 2 : 1);
    m_value.setLines(!m_value.isEmpty() && m_value.width() > valueWidth ? 2 : 1);
}

} // namespace seat
