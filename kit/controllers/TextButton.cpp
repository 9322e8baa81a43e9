#include "kit/controllers/TextButton.h"

#include "kit/quartz/geometry.h"
#include "kit/tables/CellParts.h"
#include "kit/uikit/appearance.h"
#include "platform/uikit/UIBezierPath.h"

#include <algorithm>
#include <cmath>

namespace seat {

using namespace appearance;

NS_CLASS_IMPLEMENTATION(TextButton, UIControl)

namespace {

constexpr double chevronSpace = 18; // the chevron and its distance to the text
constexpr double pressedAlpha = 0.35;

double spaceBefore(TextButton::Kind kind) {
    return kind == TextButton::Kind::Back ? chevronSpace : kind == TextButton::Kind::Row ? sideMargin : 0;
}

} // namespace

TextButton::~TextButton() = default;

std::shared_ptr<TextButton> TextButton::initWithTitle_kind(std::string title, Kind kind) {
    if (!UIControl::initWithFrame(CGRectZero)) return nullptr;
    m_kind = kind;
    m_label = CellLabel::alloc()->initWithFrame(CGRectZero);
    m_label->setText(std::move(title));
    m_label->setTextColor(kind == Kind::OnDark ? UIColor::whiteColor() : tintColor());
    m_label->setFont(kind == Kind::Bold ? boldControlFont() : kind == Kind::Row ? textFont(17) : controlFont());
    m_label->setNumberOfLines(kind == Kind::Row ? 0 : 1);
    const bool isLeft = kind == Kind::Back || kind == Kind::Row;
    m_label->setTextAlignment(isLeft ? startAlignment() : NSTextAlignmentCenter);
    addSubview(m_label);
    return self(this);
}

void TextButton::setTitleHidden(bool hidden) {
    if (m_label->isHidden() == hidden) return;
    m_label->setHidden(hidden);
    setNeedsLayout();
}

void TextButton::setHighlighted(bool highlighted) {
    if (highlighted == isHighlighted()) return;
    UIControl::setHighlighted(highlighted);
    if (m_kind == Kind::Back || m_kind == Kind::OnDark)
        setAlpha(highlighted ? pressedAlpha : 1);
    else
        setBackgroundColor(highlighted ? pressedColor() : nullptr);
}

CGSize TextButton::sizeThatFits(CGSize size) const {
    const double space = spaceBefore(m_kind);
    if (m_kind == Kind::Row)
        return CGSizeMake(size.width, heightAroundText(m_label->sizeThatFits({textWidth(size.width), 1e6}).height));
    const double text = m_label->isHidden() ? space : std::ceil(m_label->sizeThatFits({1e6, 1e6}).width);
    return CGSizeMake(text + space, size.height);
}

double TextButton::textWidth(double width) const {
    return std::max(1.0, width - spaceBefore(m_kind) - (m_kind == Kind::Row ? sideMargin : 0));
}

void TextButton::layoutSubviews() {
    const CGSize size = bounds().size;
    m_label->setFrame(inDirection(CGRectMake(spaceBefore(m_kind), 0, textWidth(size.width), size.height), size.width));
}

void TextButton::drawRect(CGRect) {
    if (m_kind != Kind::Back) return;
    const double middle = std::round(bounds().size.height / 2);
    const auto path = UIBezierPath::bezierPath();
    const auto x = [&](double fromStart) { return isRightToLeft() ? bounds().size.width - fromStart : fromStart; };
    path->moveToPoint({x(10.5), middle - 8.5});
    path->addLineToPoint({x(2), middle});
    path->addLineToPoint({x(10.5), middle + 8.5});
    path->setLineWidth(2.5);
    tintColor()->setStroke();
    path->stroke();
}

std::string TextButton::accessibilityLabel() const {
    const std::string given = UIControl::accessibilityLabel();
    return given.empty() ? m_label->text() : given;
}

bool TextButton::accessibilityActivate() {
    if (!isEnabled()) return false;
    sendActionsForControlEvents(UIControlEventTouchUpInside);
    return true;
}

} // namespace seat
