#pragma once

#include "platform/uikit/UIView.h"

#include <memory>
#include <string>

// A dark rounded panel with a spinner and a text of several lines, in the middle of a view and in front of all it
// holds. It takes the touches that fall on it and no others: what it leaves of the view can be used. Where the
// application lets work be cancelled, the panel has a button for that, and an Escape does the same. It stays when the
// screen under it goes and is there again when that comes back, until it is hidden. Main thread only.
class UIProgressHUD final : public UIView {
    NS_CLASS(UIProgressHUD)
public:
    ~UIProgressHUD() override;

    // Hidden, without a text. One panel may be shown again and again.
    std::shared_ptr<UIProgressHUD> init();

    // In front of the view's subviews, from where it was. nil shows nothing.
    void showInView(const std::shared_ptr<UIView>& view);
    // UTF-8, "\n" begins a new line; empty: the spinner alone. May change while it is shown.
    const std::string& text() const;
    void setText(std::string text);
    // Takes it out of the view, at once. Hiding a hidden one does nothing.
    void hide();
    // In a view, whether that is in a window or not.
    bool isShown() const;

    void layoutSubviews() override;
    UIAccessibilityRole accessibilityRole() const override;
    std::string accessibilityLabel() const override;

private:
    UIProgressHUD();
    // The button's action.
    void cancelTapped();
    // Cancels the work, where it can be cancelled.
    bool accessibilityPerformEscape() override;
    void didMoveToWindow() override;
    void touchesBegan_withEvent(const UITouchList& touches, UIEvent& event) override;
    void touchesMoved_withEvent(const UITouchList& touches, UIEvent& event) override;
    void touchesEnded_withEvent(const UITouchList& touches, UIEvent& event) override;
    void touchesCancelled_withEvent(const UITouchList& touches, UIEvent& event) override;
    // Sizes and centres the panel.
    void place();
    struct State;
    std::unique_ptr<State> m_hud;
};
