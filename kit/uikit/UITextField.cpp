#include "platform/uikit/UITextField.h"

#include "kit/quartz/text_runs.h"
#include "kit/seat.h"
#include "kit/uikit/appearance.h"
#include "kit/uikit/text_field_state.h"
#include "platform/uikit/UIImage.h"
#include "platform/uikit/UIWindow.h"

#include <algorithm>
#include <cmath>
#include <limits>

NS_CLASS_IMPLEMENTATION(UITextField, UIControl)

namespace {

constexpr double caretWidth = 2;
constexpr double sideRoom = 2; // so that the caret is whole at either end
constexpr double disabledAlpha = 0.4;

} // namespace

UITextField::UITextField() : m_field(std::make_unique<State>()) {}
UITextField::~UITextField() = default;

std::shared_ptr<UITextField> UITextField::init() { return initWithFrame(CGRectZero); }

std::shared_ptr<UITextField> UITextField::initWithFrame(CGRect frame) {
    return UIControl::initWithFrame(frame) ? self(this) : nullptr;
}

const std::string& UITextField::text() const { return m_field->editor.text(); }

void UITextField::setText(const std::string& text) {
    m_field->editor.setText(text);
    showCaret();
}

void UITextField::setPlaceholder(std::string placeholder) {
    m_field->placeholder = std::move(placeholder);
    setNeedsDisplay();
}

void UITextField::setFont(std::shared_ptr<UIFont> font) {
    m_field->font = font ? std::move(font) : UIFont::systemFontOfSize(17);
    showCaret();
}

CGSize UITextField::sizeThatFits(CGSize size) const { return {size.width, std::ceil(m_field->font->lineHeight())}; }

void UITextField::layoutSubviews() { showCaret(); }

// A space at the end has no width of its own, so that something is put behind it.
double UITextField::leftOf(std::size_t place) const {
    if (place == 0) return 0;
    const auto width = [this](std::string text) {
        const auto runs = seat::textRuns(std::move(text), m_field->font, UIColor::blackColor()->CGColor());
        return seat::measureText(runs, std::numeric_limits<double>::infinity(), 1).size.width;
    };
    return width(text().substr(0, place) + "|") - width("|");
}

// The place nearest to a point of the field.
std::size_t UITextField::placeAt(double x) const {
    const double wanted = x - sideRoom + m_field->scroll;
    const auto places = m_field->editor.places();
    const auto right = std::lower_bound(places.begin(), places.end(), wanted,
                                        [this](std::size_t place, double at) { return leftOf(place) < at; });
    if (right == places.begin()) return 0;
    if (right == places.end()) return places.back();
    const auto left = std::prev(right);
    return wanted - leftOf(*left) <= leftOf(*right) - wanted ? *left : *right;
}

void UITextField::showCaret() {
    const double room = std::max(0.0, bounds().size.width - 2 * sideRoom);
    const double caret = leftOf(m_field->editor.caret());
    const double most = std::max(0.0, leftOf(text().size()) - room);
    m_field->scroll = std::clamp(std::clamp(m_field->scroll, caret - room, caret), 0.0, most);
    setNeedsDisplay();
}

// The caret stands still: one that blinks would wake the process twice a second for as long as the field is there.
void UITextField::drawRect(CGRect) {
    const CGContextRef context = UIGraphicsGetCurrentContext();
    const auto& editor = m_field->editor;
    const auto owner = window();
    const bool isFocused = owner && owner->focusedView().get() == this;
    const CGSize size = bounds().size;
    const double lineHeight = std::min(size.height, std::ceil(m_field->font->lineHeight()));
    const double top = seat::appearance::roundToPixel((size.height - lineHeight) / 2);
    const double left = sideRoom - m_field->scroll;

    CGContextSaveGState(context);
    CGContextClipToRect(context, bounds());
    if (!isEnabled()) CGContextSetAlpha(context, disabledAlpha);
    if (isFocused && editor.hasSelection()) {
        const double from = leftOf(editor.selectionStart());
        const auto& tint = seat::appearance::tintColor();
        CGContextSaveGState(context);
        CGContextSetAlpha(context, 0.22);
        CGContextSetFillColorWithColor(context, tint->CGColor());
        CGContextFillRect(context, {{left + from, top}, {leftOf(editor.selectionEnd()) - from, lineHeight}});
        CGContextRestoreGState(context);
    }
    const bool isEmpty = text().empty();
    const auto& color = isEmpty ? seat::appearance::markColor() : seat::appearance::textColor();
    const auto runs = seat::textRuns(isEmpty ? m_field->placeholder : text(), m_field->font, color->CGColor());
    const double width = std::max(size.width - 2 * sideRoom, isEmpty ? 0 : leftOf(text().size()) + 1);
    seat::drawText(context, runs, {{left, 0}, {width, size.height}}, seat::TextAlignment::Left, 1);
    if (isFocused && !editor.hasSelection()) {
        CGContextSetFillColorWithColor(context, seat::appearance::tintColor()->CGColor());
        const double caret = seat::appearance::roundToPixel(left + leftOf(editor.caret()) - caretWidth / 2);
        CGContextFillRect(context, {{std::max(0.0, caret), top}, {caretWidth, lineHeight}});
    }
    CGContextRestoreGState(context);
}

bool UITextField::canBecomeFocused() const { return isEnabled(); }
void UITextField::focusDidChange() { setNeedsDisplay(); }
UIAccessibilityRole UITextField::accessibilityRole() const { return UIAccessibilityRole::TextField; }
std::string UITextField::accessibilityValue() const { return text(); }

std::optional<UIAccessibilityText> UITextField::accessibilityText() const {
    const auto& editor = m_field->editor;
    return UIAccessibilityText{editor.text(), editor.selectionStart(), editor.selectionEnd(), editor.caret()};
}
