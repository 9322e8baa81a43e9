#include "app/help/CardView.h"

#include "kit/quartz/geometry.h"
#include "kit/uikit/appearance.h"

#include <cmath>

namespace app {

using namespace seat::appearance;

NS_CLASS_IMPLEMENTATION(CardView, UIView)

namespace {

double heightOf(const UIView& row, double width) {
    return std::ceil(row.sizeThatFits({width, heightForText(rowHeight)}).height);
}

} // namespace

CardView::~CardView() = default;

std::shared_ptr<CardView> CardView::init() {
    if (!UIView::initWithFrame(CGRectZero)) return nullptr;
    setBackgroundColor(cardColor());
    layer()->setCornerRadius(cardCornerRadius);
    setClipsToBounds(true); // a pressed row is filled into the corners
    return self(this);
}

void CardView::add(const std::shared_ptr<UIView>& row) {
    const auto line = UIView::alloc()->initWithFrame(CGRectZero);
    line->setBackgroundColor(separatorColor());
    addSubview(row);
    addSubview(line);
    m_rows.push_back({row, line});
    setNeedsLayout();
}

CGSize CardView::sizeThatFits(CGSize size) const {
    double height = 0;
    for (const auto& row : m_rows)
        if (!row.view->isHidden()) height += heightOf(*row.view, size.width);
    return CGSizeMake(size.width, height);
}

void CardView::layoutSubviews() {
    UIView::layoutSubviews();
    const double width = bounds().size.width;
    double y = 0;
    for (const auto& [view, line] : m_rows) {
        line->setHidden(view->isHidden() || y == 0);
        if (view->isHidden()) continue;
        const double height = heightOf(*view, width);
        view->setFrame(CGRectMake(0, y, width, height));
        line->setFrame(inDirection(CGRectMake(sideMargin, y, width - sideMargin, hairline()), width));
        y += height;
    }
}

} // namespace app
