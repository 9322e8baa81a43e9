#include "desktop/mail/ComposeHeader.h"

#include "desktop/mail/message_body.h"
#include "kit/tables/CellParts.h"
#include "kit/uikit/appearance.h"

#include <algorithm>
#include <cmath>

namespace seat {

NS_CLASS_IMPLEMENTATION(ComposeHeader, UIView)

ComposeHeader::~ComposeHeader() = default;

std::shared_ptr<ComposeHeader> ComposeHeader::initWithName(const std::string& name) {
    if (!UIView::initWithFrame(CGRectZero)) return nullptr;
    m_name = CellLabel::alloc()->initWithFrame(CGRectZero);
    m_name->setFont(UIFont::systemFontOfSize(15));
    m_name->setTextColor(appearance::secondaryTextColor());
    m_name->setText(name + ":");
    addSubview(m_name);
    m_field = UITextField::alloc()->initWithFrame(CGRectZero);
    m_field->setFont(UIFont::systemFontOfSize(15));
    m_field->setAccessibilityLabel(name);
    addSubview(m_field);
    m_line = UIView::alloc()->initWithFrame(CGRectZero);
    m_line->setBackgroundColor(appearance::separatorColor());
    addSubview(m_line);
    return self(this);
}

void ComposeHeader::layoutSubviews() {
    const CGSize size = bounds().size;
    const double left = messageMargin(size.width);
    const double nameWidth = std::ceil(m_name->sizeThatFits({1e6, size.height}).width);
    m_name->setFrame({{left, 0}, {nameWidth, size.height}});
    const double fieldLeft = left + nameWidth + appearance::labelGap;
    // Some room above and below, for the ring that shows the focus.
    m_field->setFrame(
        {{fieldLeft, 6}, {std::max(0.0, size.width - left - fieldLeft), std::max(0.0, size.height - 12)}});
    m_line->setFrame(
        {{left, size.height - appearance::hairline()}, {std::max(0.0, size.width - left), appearance::hairline()}});
}

} // namespace seat
