#pragma once

#include "platform/uikit/UIView.h"

#include <memory>
#include <string>
#include <vector>

class UIAlertView;

// Who wants to know how an alert was answered. Main thread.
class UIAlertViewDelegate {
public:
    virtual ~UIAlertViewDelegate() = default;
    // Once an alert, when it has left the screen; index 0 is the cancel button. May show the next alert, or free the
    // page.
    virtual void alertView_didDismissWithButtonIndex(UIAlertView& alert, long buttonIndex) = 0;
};

// A question in the middle of the dimmed window. One at a time: the rest wait their turn in the order of `show`. A
// shown alert lives until it was dismissed, and takes all touches and keys of its window meanwhile; the rest of the
// program goes on. Return answers with the last button, Escape with the cancel button. Main thread only.
class UIAlertView final : public UIView {
    NS_CLASS(UIAlertView)
public:
    struct Internals; // the seat's way in, opaque to everybody else
    ~UIAlertView() override;

    // Texts are UTF-8 and may be empty. The delegate is weak and may be nil; it hears of the dismissal once, when the
    // alert has gone. There is always a cancel button; the others follow it in their order.
    std::shared_ptr<UIAlertView> initWithTitle_message_delegate_cancelButtonTitle_otherButtonTitles(
        std::string title, std::string message, const std::shared_ptr<UIAlertViewDelegate>& delegate,
        std::string cancelButtonTitle, std::vector<std::string> otherButtonTitles);

    // As they were given.
    const std::string& title() const;
    const std::string& message() const;
    // The cancel button is index 0.
    const std::vector<std::string>& buttonTitles() const;
    // In a window, and not on its way out.
    bool isVisible() const;
    // An alert that is shown, or waits for its turn, is not shown twice.
    void show();
    // As if the button was tapped; one that waits is dropped. Nothing for an alert that is not shown.
    void dismissWithClickedButtonIndex_animated(long buttonIndex, bool animated);

    void layoutSubviews() override;
    UIAccessibilityRole accessibilityRole() const override;
    std::string accessibilityLabel() const override;

private:
    UIAlertView();
    // A button's action; takes the button.
    void buttonTapped(const std::shared_ptr<UIView>& button);
    // The cancel button.
    bool accessibilityPerformEscape() override;
    void touchesBegan_withEvent(const UITouchList& touches, UIEvent& event) override;
    void touchesMoved_withEvent(const UITouchList& touches, UIEvent& event) override;
    void touchesEnded_withEvent(const UITouchList& touches, UIEvent& event) override;
    void touchesCancelled_withEvent(const UITouchList& touches, UIEvent& event) override;
    void appearIn(UIWindow& window);
    void layOutButtons(double top);

    struct State;
    std::unique_ptr<State> m_alert;
};
