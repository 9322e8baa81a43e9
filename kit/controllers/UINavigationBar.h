#pragma once

#include "platform/uikit/UIView.h"

// The bar at the top: the front screen's title and, above the root, a back button named for the screen below. 44 points
// high.
class UINavigationBar final : public UIView {
    NS_CLASS(UINavigationBar)
public:
    struct Internals; // the seat's way in, opaque to everybody else
    ~UINavigationBar() override;

    std::shared_ptr<UINavigationBar> initWithFrame(CGRect frame);
    void layoutSubviews() override;
    UIAccessibilityRole accessibilityRole() const override;
    std::string accessibilityLabel() const override;

private:
    UINavigationBar();
    struct State;
    std::unique_ptr<State> m_bar;
};
