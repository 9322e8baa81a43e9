#pragma once

#include "platform/uikit/UIView.h"

#include <memory>
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
    // The cancel button.
    bool accessibilityPerformEscape() override;
    void touchesBegan_withEvent(const UITouchList& touches, UIEvent& event) override;
    void touchesMoved_withEvent(const UITouchList& touches, UIEvent& event) override;
    void touchesEnded_withEvent(const UITouchList& touches, UIEvent& event) override;
    void touchesCancelled_withEvent(const UITouchList& touches, UIEvent& event) override;
    // A button's action; takes the button.
    void buttonTapped(const std::shared_ptr<UIView>& button);

private:
    UIAlertView();
    friend class AlertQueue; // kit/alerts
    void appearIn(UIWindow& window);
    void layOutButtons(double top);

    struct State; // kit/alerts/alert_state.h
    std::unique_ptr<State> m_alert;
};
