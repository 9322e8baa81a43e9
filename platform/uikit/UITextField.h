#pragma once

#include "platform/uikit/UIControl.h"
#include "platform/uikit/UIFont.h"

class UIKeyEvent;

// A line of text that the user can change: by keys, by the pointer, by assistive technology. Sends
// UIControlEventEditingChanged after each change that is the user's.
class UITextField : public UIControl {
    NS_CLASS(UITextField)
public:
    ~UITextField() override;

    std::shared_ptr<UITextField> init();
    std::shared_ptr<UITextField> initWithFrame(CGRect frame);

    // UTF-8 on one line: line ends and tabs become spaces, other control characters go. Setting it puts the caret at
    // the end and sends nothing.
    const std::string& text() const;
    void setText(const std::string& text);
    // Shown, pale, while the text is empty.
    void setPlaceholder(std::string placeholder);
    void setFont(std::shared_ptr<UIFont> font); // system font of size 17 by default

    // As the user does it: in place of the selection.
    void insertText(const std::string& text);
    // A key that went down while the field has the focus. False when the field has no use for it.
    bool takeKey(const UIKeyEvent& event);

    void layoutSubviews() override;
    void drawRect(CGRect rect) override;
    CGSize sizeThatFits(CGSize size) const override;
    void touchesBegan_withEvent(const UITouchList& touches, UIEvent& event) override;
    void touchesMoved_withEvent(const UITouchList& touches, UIEvent& event) override;
    void touchesEnded_withEvent(const UITouchList& touches, UIEvent& event) override;
    void touchesCancelled_withEvent(const UITouchList& touches, UIEvent& event) override;

    bool canBecomeFocused() const override;
    void focusDidChange() override;
    UIAccessibilityRole accessibilityRole() const override;
    std::string accessibilityValue() const override;
    std::optional<UIAccessibilityText> accessibilityText() const override;
    bool accessibilitySetText(const std::string& text) override;
    bool accessibilitySelectText(std::size_t start, std::size_t end) override;

protected:
    UITextField();

private:
    double leftOf(std::size_t place) const;
    std::size_t placeAt(double x) const;
    void showCaret();
    bool takeShortcut(char letter);
    // After anything that may have changed the text, which was `former`, or moved the caret.
    void edited(const std::string& former);

    struct State;
    std::unique_ptr<State> m_field;
};
