#pragma once

#include "platform/uikit/UIView.h"

#include <string>
#include <vector>

class UIAlertView;

class UIAlertViewDelegate {
public:
    virtual ~UIAlertViewDelegate() = default;
    virtual void alertView_didDismissWithButtonIndex(UIAlertView& alert, long buttonIndex) = 0;
};

// A question in the middle of the dimmed window. One at a time: the rest wait their turn in the order of `show`. A
// shown alert lives until it was dismissed.
class UIAlertView final : public UIView {
    NS_CLASS(UIAlertView)
public:
    ~UIAlertView() override;

    // The delegate is weak and may be nil; it hears of the dismissal once, when the alert has gone.
    std::shared_ptr<UIAlertView> initWithTitle_message_delegate_cancelButtonTitle_otherButtonTitles(
        std::string title, std::string message, const std::shared_ptr<UIAlertViewDelegate>& delegate,
        std::string cancelButtonTitle, std::vector<std::string> otherButtonTitles);

    const std::string& title() const;
    const std::string& message() const;
    // The cancel button is index 0.
    const std::vector<std::string>& buttonTitles() const;
    bool isVisible() const;
    void show();
    void dismissWithClickedButtonIndex_animated(long buttonIndex, bool animated);

    void layoutSubviews() override;
    UIAccessibilityRole accessibilityRole() const override;
    std::string accessibilityLabel() const override;

private:
    UIAlertView();
};
