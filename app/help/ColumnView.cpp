#include "app/help/ColumnView.h"

#include "kit/quartz/geometry.h"
#include "kit/uikit/appearance.h"

#include <algorithm>
#include <cmath>

namespace app {

using namespace seat::appearance;

NS_CLASS_IMPLEMENTATION(ColumnView, UIScrollView)

namespace {

constexpr double bottomSpace = 28; // below the last

} // namespace

ColumnView::~ColumnView() = default;

std::shared_ptr<ColumnView> ColumnView::init() {
    if (!UIScrollView::initWithFrame(CGRectMake(0, 0, 384, 667))) return nullptr;
    setBackgroundColor(pageColor());
    return self(this);
}

void ColumnView::add(const std::shared_ptr<UIView>& view, double space) {
    m_items.push_back({view, space});
    addSubview(view);
    setNeedsLayout();
}

void ColumnView::layoutSubviews() {
    UIScrollView::layoutSubviews();
    const double whole = bounds().size.width;
    const double width = std::max(1.0, std::min(readableWidth, whole - 2 * sideMargin));
    const double left = std::floor((whole - width) / 2);
    double y = 0;
    for (const auto& [view, space] : m_items) {
        if (view->isHidden()) continue;
        // Whole points, so that edges are crisp at whole scales.
        const double height = std::ceil(view->sizeThatFits({width, 1e6}).height);
        y += space;
        view->setFrame(CGRectMake(left, y, width, height));
        y += height;
    }
    setContentSize(CGSizeMake(whole, y + bottomSpace));
}

} // namespace app
