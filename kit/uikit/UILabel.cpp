#include "platform/uikit/UILabel.h"

#include "kit/quartz/drawing.h"
#include "kit/quartz/text_runs.h"
#include "kit/seat.h"
#include "kit/uikit/appearance.h"
#include "kit/uikit/label_style.h"
#include "platform/uikit/UIImage.h"

#include <algorithm>
#include <limits>
#include <utility>

NS_CLASS_IMPLEMENTATION(UILabel, UIView)

namespace {

constexpr double unlimited = std::numeric_limits<double>::infinity();

seat::TextAlignment hostAlignment(NSTextAlignment alignment) {
    switch (alignment) {
    case NSTextAlignmentCenter:
        return seat::TextAlignment::Center;
    case NSTextAlignmentRight:
        return seat::TextAlignment::Right;
    case NSTextAlignmentLeft:
        break;
    }
    return seat::TextAlignment::Left;
}

bool isSameColor(const std::shared_ptr<UIColor>& a, const std::shared_ptr<UIColor>& b) {
    return a == b || (a && b && *a->CGColor() == *b->CGColor());
}

// Who asks for plain black or blue text thinks of a light page.
const std::shared_ptr<UIColor>& legible(const std::shared_ptr<UIColor>& color) {
    if (color == UIColor::blackColor()) return seat::appearance::textColor();
    if (color == UIColor::blueColor()) return seat::appearance::tintColor();
    return color; // NOLINT(bugprone-return-const-ref-from-parameter): a label's own, which outlives the call
}

bool looksTheSame(const NSAttributedString& a, const NSAttributedString& b) {
    return std::ranges::equal(a.runs(), b.runs(), [](const auto& x, const auto& y) {
        return x.text == y.text && x.attributes.font == y.attributes.font &&
               isSameColor(x.attributes.foregroundColor, y.attributes.foregroundColor);
    });
}

std::vector<seat::TextRun> runsOf(const UILabel& label) {
    const auto& color = legible(label.textColor())->CGColor();
    const auto& attributed = label.attributedText();
    return attributed ? seat::textRuns(*attributed, label.font(), color)
                      : seat::textRuns(label.text(), label.font(), color);
}

} // namespace

std::optional<seat::LabelStyle> seat::labelStyle(const UIView& view) {
    if (const auto* const label = dynamic_cast<const UILabel*>(&view))
        return LabelStyle{label->font(), legible(label->textColor())->CGColor(), label->textAlignment()};
    for (const auto& subview : view.subviews())
        if (auto style = labelStyle(*subview)) return style;
    return std::nullopt;
}

UILabel::UILabel() : m_font(seat::appearance::textFont(17)), m_textColor(seat::appearance::textColor()) {}
UILabel::~UILabel() = default;

std::shared_ptr<UILabel> UILabel::init() { return initWithFrame(CGRectZero); }

std::shared_ptr<UILabel> UILabel::initWithFrame(CGRect frame) {
    if (!UIView::initWithFrame(frame)) return nullptr;
    setUserInteractionEnabled(false);
    return self(this);
}

std::shared_ptr<UILabel> UILabel::initWithCoder(const std::shared_ptr<NSCoder>& coder) {
    if (!UIView::initWithCoder(coder)) return nullptr;
    setUserInteractionEnabled(false);
    return self(this);
}

const std::string& UILabel::text() const { return m_text; }

void UILabel::setText(std::string text) {
    if (!m_attributedText && text == m_text) return;
    m_attributedText = nullptr;
    m_text = std::move(text);
    textChanged();
}

const std::shared_ptr<NSAttributedString>& UILabel::attributedText() const { return m_attributedText; }

void UILabel::setAttributedText(std::shared_ptr<NSAttributedString> text) {
    const bool changes = !m_attributedText || !text || !looksTheSame(*m_attributedText, *text);
    m_text = text ? text->string() : std::string();
    m_attributedText = std::move(text);
    if (changes) textChanged();
}

const std::shared_ptr<UIFont>& UILabel::font() const { return m_font; }

void UILabel::setFont(std::shared_ptr<UIFont> font) {
    if (font == m_font) return;
    m_font = font ? std::move(font) : seat::appearance::textFont(17);
    textChanged();
}

const std::shared_ptr<UIColor>& UILabel::textColor() const { return m_textColor; }

void UILabel::setTextColor(std::shared_ptr<UIColor> color) {
    if (color == m_textColor) return;
    if (!color) color = seat::appearance::textColor();
    m_textColor = std::move(color);
    setNeedsDisplay();
}

NSTextAlignment UILabel::textAlignment() const { return m_textAlignment; }

void UILabel::setTextAlignment(NSTextAlignment alignment) {
    if (std::exchange(m_textAlignment, alignment) != alignment) setNeedsDisplay();
}

int UILabel::numberOfLines() const { return m_numberOfLines; }

void UILabel::setNumberOfLines(int lines) {
    if (std::exchange(m_numberOfLines, lines) != lines) textChanged();
}

bool UILabel::isEnabled() const { return m_enabled; }

void UILabel::setEnabled(bool enabled) {
    if (std::exchange(m_enabled, enabled) != enabled) setNeedsDisplay();
}

void UILabel::textChanged() {
    setNeedsDisplay();
    invalidateIntrinsicContentSize();
}

CGSize UILabel::sizeThatFits(CGSize size) const {
    // One line is never wrapped: it wants all of its width.
    const double width = m_numberOfLines != 1 && size.width > 0 ? size.width : unlimited;
    return seat::measureText(runsOf(*this), width, m_numberOfLines).size;
}

CGSize UILabel::intrinsicContentSize() const { return sizeThatFits(bounds().size); }

void UILabel::drawRect(CGRect rect) {
    const CGContextRef context = UIGraphicsGetCurrentContext();
    CGContextSaveGState(context);
    if (!m_enabled) CGContextSetAlpha(context, seat::appearance::disabledAlpha);
    seat::drawText(context, runsOf(*this), rect, hostAlignment(m_textAlignment), m_numberOfLines);
    CGContextRestoreGState(context);
}

UIAccessibilityRole UILabel::accessibilityRole() const {
    return m_text.empty() ? UIAccessibilityRole::None : UIAccessibilityRole::StaticText;
}

std::string UILabel::accessibilityLabel() const {
    const std::string given = UIView::accessibilityLabel();
    return given.empty() ? m_text : given;
}
