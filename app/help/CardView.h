#pragma once

#include "platform/uikit/UIView.h"

#include <memory>
#include <vector>

namespace app {

// Rows below each other in a card with round corners, a line between each two. A row is as high as it wants to be at
// the card's width, a button as high as a row of a table.
class CardView final : public UIView {
    NS_CLASS(CardView)
public:
    ~CardView() override;
    std::shared_ptr<CardView> init();

    // At the lower end. A hidden row takes no room.
    void add(const std::shared_ptr<UIView>& row);
    CGSize sizeThatFits(CGSize size) const override;
    void layoutSubviews() override;

private:
    struct Row {
        std::shared_ptr<UIView> view;
        std::shared_ptr<UIView> line; // above it
    };
    CardView() = default;

    std::vector<Row> m_rows;
};

} // namespace app
