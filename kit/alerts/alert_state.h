#pragma once

#include "kit/controllers/TextButton.h"
#include "platform/uikit/UIAlertView.h"
#include "platform/uikit/UIScrollView.h"
#include "platform/uikit/UIWindow.h"

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

    bool hasButtonsSideBySide() const { return buttons.size() == 2; }
};
