#pragma once

#include "platform/uikit/UIView.h"

#include <memory>
#include <string>

// A dark rounded panel with a spinner and a text of several lines, over a view that takes no touches meanwhile.
class UIProgressHUD final : public UIView {
    NS_CLASS(UIProgressHUD)
public:
    ~UIProgressHUD() override;

    std::shared_ptr<UIProgressHUD> init();

    // Centred over the view, in front of all it holds; nil shows nothing.
    void showInView(const std::shared_ptr<UIView>& view);
    const std::string& text() const;
    void setText(std::string text);
    // Hiding a hidden one does nothing.
    void hide();
    bool isShown() const;

    void layoutSubviews() override;
    UIAccessibilityRole accessibilityRole() const override;
    std::string accessibilityLabel() const override;
    void didMoveToWindow() override;
    void touchesBegan_withEvent(const UITouchList& touches, UIEvent& event) override;
    void touchesMoved_withEvent(const UITouchList& touches, UIEvent& event) override;
    void touchesEnded_withEvent(const UITouchList& touches, UIEvent& event) override;
    void touchesCancelled_withEvent(const UITouchList& touches, UIEvent& event) override;

private:
    UIProgressHUD();
    struct State;
    std::unique_ptr<State> m_hud;
};
