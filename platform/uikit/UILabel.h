#pragma once

#include "platform/uikit/NSAttributedString.h"
#include "platform/uikit/UIView.h"

// The phone's numbers.
enum NSTextAlignment : int { NSTextAlignmentLeft = 0, NSTextAlignmentCenter = 1, NSTextAlignmentRight = 2 };

// Text, centred vertically in its bounds. A single line is cut with an ellipsis; several lines wrap at words, and
// inside one that is too long; "\n" begins a new line. Takes no touches of its own. A change asks for a repaint, not
// for another size: call sizeToFit, or let the layout do it. Main thread only.
class UILabel : public UIView {
    NS_CLASS(UILabel)
public:
    ~UILabel() override;

    // Without text.
    std::shared_ptr<UILabel> init();
    std::shared_ptr<UILabel> initWithFrame(CGRect frame);
    std::shared_ptr<UILabel> initWithCoder(const std::shared_ptr<NSCoder>& coder);

    // UTF-8. Empty while none was set; of an attributed text the characters.
    const std::string& text() const;
    void setText(std::string text);
    // nil while plain text is shown; setting either replaces the other. Runs without a font or a colour of their own
    // have the label's.
    const std::shared_ptr<NSAttributedString>& attributedText() const;
    void setAttributedText(std::shared_ptr<NSAttributedString> text);
    // Both are never nil: nil brings back the default, the system font of size 17 and black.
    const std::shared_ptr<UIFont>& font() const;
    void setFont(std::shared_ptr<UIFont> font);
    const std::shared_ptr<UIColor>& textColor() const;
    void setTextColor(std::shared_ptr<UIColor> color);
    // Left at first. Of several lines each by itself.
    NSTextAlignment textAlignment() const;
    void setTextAlignment(NSTextAlignment alignment);
    // 0: as many as it takes. 1 by default. What does not fit the last line is cut with an ellipsis.
    int numberOfLines() const;
    void setNumberOfLines(int lines);
    // A disabled label is drawn pale; enabled at first. Nothing else changes.
    bool isEnabled() const;
    void setEnabled(bool enabled);

    // As large as the text needs: one line its whole width, several lines wrapped at the given width (0: unwrapped).
    CGSize sizeThatFits(CGSize size) const override;
    CGSize intrinsicContentSize() const override;
    void drawRect(CGRect rect) override;
    UIAccessibilityRole accessibilityRole() const override;
    std::string accessibilityLabel() const override;

protected:
    UILabel();

private:
    void textChanged();

    std::string m_text;
    std::shared_ptr<NSAttributedString> m_attributedText;
    std::shared_ptr<UIFont> m_font;
    std::shared_ptr<UIColor> m_textColor;
    NSTextAlignment m_textAlignment = NSTextAlignmentLeft;
    int m_numberOfLines = 1;
    bool m_enabled = true;
};
