#pragma once

#include "platform/uikit/UILabel.h"
#include "platform/uikit/UIScrollView.h"

#include <functional>
#include <memory>
#include <string>

namespace seat {
class TextButton;
}

namespace app {

// A strip along the lower edge of a window that says what has happened and what to do: with a button that does it where
// there is one, and one that puts the strip away. Text that would take more than half of the window is scrolled.
class NoticeView final : public UIView {
    NS_CLASS(NoticeView)
public:
    ~NoticeView() override;

    // Both may be empty functions.
    std::shared_ptr<NoticeView> initWithClosed_acted(std::function<void()> closed, std::function<void()> acted);

    // Without a title of it there is no button.
    void show(const std::string& text, const std::string& actionTitle);
    // In a window of that size.
    double heightIn(CGSize window) const;
    // The window has another size, for which the strip wants another height.
    std::function<void()> wantsPlace;

    void layoutSubviews() override;
    UIAccessibilityRole accessibilityRole() const override { return UIAccessibilityRole::Alert; }
    std::string accessibilityLabel() const override;
    bool accessibilityPerformEscape() override;
    // What lies below hears nothing of the touches on it.
    void touchesBegan_withEvent(const UITouchList&, UIEvent&) override {}
    void touchesMoved_withEvent(const UITouchList&, UIEvent&) override {}
    void touchesEnded_withEvent(const UITouchList&, UIEvent&) override {}
    void touchesCancelled_withEvent(const UITouchList&, UIEvent&) override {}

private:
    bool hasButtonsBelow(double width) const; // each other, for want of room
    double buttonsHeight(double width) const;
    void closeTapped();
    void actionTapped();

    std::function<void()> m_closed;
    std::function<void()> m_acted;
    std::shared_ptr<UIView> m_line;
    std::shared_ptr<UIScrollView> m_texts;
    std::shared_ptr<UILabel> m_label;
    std::shared_ptr<seat::TextButton> m_action; // hidden without an action
    std::shared_ptr<seat::TextButton> m_close;
    std::string m_actionTitle;
};

} // namespace app
