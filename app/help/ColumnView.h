#pragma once

#include "platform/uikit/UIScrollView.h"

#include <memory>
#include <vector>

namespace app {

// Texts, pictures and cards below each other, in a column as wide as rows are; what finds no room is scrolled to.
class ColumnView final : public UIScrollView {
    NS_CLASS(ColumnView)
public:
    ~ColumnView() override;
    std::shared_ptr<ColumnView> init();

    // At the column's lower end, `space` points below what is there. As high as it wants to be at the column's width;
    // hidden it takes no room.
    void add(const std::shared_ptr<UIView>& view, double space);
    void layoutSubviews() override;

private:
    struct Item {
        std::shared_ptr<UIView> view;
        double space = 0; // points
    };
    ColumnView() = default;

    std::vector<Item> m_items;
};

} // namespace app
