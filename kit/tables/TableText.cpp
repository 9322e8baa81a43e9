#include "kit/tables/TableText.h"

#include "kit/quartz/geometry.h"
#include "kit/uikit/appearance.h"

namespace seat {

NS_CLASS_IMPLEMENTATION(TableText, UILabel)

TableText::~TableText() = default;

std::shared_ptr<TableText> TableText::initWithRole(UIAccessibilityRole role) {
    if (!UILabel::initWithFrame(CGRectZero)) return nullptr;
    m_role = role;
    setFont(appearance::textFont(13));
    setTextColor(appearance::secondaryTextColor());
    setNumberOfLines(0);
    setTextAlignment(appearance::startAlignment());
    return self(this);
}

double TableText::heightOf(const std::string& text, double width) {
    if (!(width > 0)) return 0;
    const auto label = alloc()->initWithRole(UIAccessibilityRole::StaticText);
    label->setText(text);
    return label->sizeThatFits(CGSizeMake(width, 1e6)).height;
}

} // namespace seat
