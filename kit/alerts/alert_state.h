#pragma once

#include "kit/controllers/TextButton.h"
#include "kit/uikit/UIWindow.h"
#include "platform/uikit/UIAlertView.h"
#include "platform/uikit/UIScrollView.h"

#include <algorithm>

struct UIAlertView::State {
    std::string title;
    std::string message;
    std::vector<std::string> buttonTitles;
    std::weak_ptr<UIAlertViewDelegate> delegate;

    std::shared_ptr<UIView> card;
    std::shared_ptr<UIScrollView> texts; // scrolls only where the window is too low for them
    std::shared_ptr<UILabel> titleLabel;
    std::shared_ptr<UILabel> messageLabel;
    std::vector<std::shared_ptr<seat::TextButton>> buttons;
    std::vector<std::shared_ptr<UIView>> lines; // above and between the buttons

    bool hasAppeared = false;
    bool isDismissing = false;

    // Two that find room there.
    bool hasButtonsSideBySide(double width) const {
        constexpr double margins = 16; // beside a title
        return buttons.size() == 2 && std::ranges::all_of(buttons, [&](const auto& button) {
                   return button->sizeThatFits({width, 0}).width + margins <= width / 2;
               });
    }
};

struct UIAlertView::Internals {
    static State& state(UIAlertView& alert) { return *alert.m_alert; }
    static const State& state(const UIAlertView& alert) { return *alert.m_alert; }
    static void appearIn(UIAlertView& alert, UIWindow& window) { alert.appearIn(window); }
};
using AlertInternals = UIAlertView::Internals;
