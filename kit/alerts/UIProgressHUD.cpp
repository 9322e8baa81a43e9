#include "platform/uikit/UIProgressHUD.h"

#include "kit/alerts/Spinner.h"
#include "kit/alerts/progress_canceller.h"
#include "kit/controllers/TextButton.h"
#include "kit/foundation/translation.h"
#include "kit/quartz/geometry.h"
#include "kit/quartz/text_runs.h"
#include "kit/quartz/text_size.h"
#include "kit/seat.h"
#include "kit/tables/CellParts.h"
#include "kit/uikit/appearance.h"
#include "platform/runtime/method.h"

#include <algorithm>
#include <cmath>
#include <utility>

using namespace seat;

NS_CLASS_IMPLEMENTATION(UIProgressHUD, UIView, method<&UIProgressHUD::cancelTapped>("cancelTapped"))

namespace {

constexpr double spinnerSize = 36;
constexpr double usualPadding = 24;
constexpr double leastPadding = 8;
constexpr double space = 16; // between spinner and text
constexpr double leastWidth = 140;
constexpr double mostWidth = 300;
constexpr double viewMargin = 24;
constexpr double leastViewMargin = 8;
constexpr double wayOutHeight = 44;

std::function<void()>& canceller() {
    static auto& cancel = *new std::function<void()>; // a panel may be up when the process ends
    return cancel;
}

} // namespace

void seat::setProgressCanceller(std::function<void()> cancel) { canceller() = std::move(cancel); }

struct UIProgressHUD::State {
    std::shared_ptr<Spinner> spinner;
    std::shared_ptr<UILabel> label;
    std::shared_ptr<UIView> line; // above the button
    std::shared_ptr<TextButton> button;
};

UIProgressHUD::UIProgressHUD() : m_hud(std::make_unique<State>()) {}
UIProgressHUD::~UIProgressHUD() = default;

std::shared_ptr<UIProgressHUD> UIProgressHUD::init() {
    if (!UIView::initWithFrame(CGRectZero)) return nullptr;
    // Another size of the view leads to another layout, which places the panel.
    setAutoresizingMask(UIViewAutoresizingFlexibleWidth | UIViewAutoresizingFlexibleHeight);
    setBackgroundColor(appearance::panelColor());
    layer()->setCornerRadius(12);
    m_hud->spinner = Spinner::alloc()->initWithSize(spinnerSize);
    m_hud->label = CellLabel::alloc()->initWithFrame(CGRectZero);
    m_hud->label->setFont(appearance::textFont(15));
    m_hud->label->setTextColor(UIColor::whiteColor());
    m_hud->label->setTextAlignment(NSTextAlignmentCenter);
    m_hud->label->setNumberOfLines(0);
    m_hud->line = UIView::alloc()->initWithFrame(CGRectZero);
    m_hud->line->setBackgroundColor(UIColor::colorWithWhite_alpha(1, 0.3));
    m_hud->button = TextButton::alloc()->initWithTitle_kind(translated("Cancel"), TextButton::Kind::OnDark);
    m_hud->button->addTarget_action_forControlEvents(shared_from_this(), "cancelTapped", UIControlEventTouchUpInside);
    addSubview(m_hud->spinner);
    addSubview(m_hud->label);
    addSubview(m_hud->line);
    addSubview(m_hud->button);
    return self(this);
}

void UIProgressHUD::showInView(const std::shared_ptr<UIView>& view) {
    if (!view) return;
    m_hud->button->setHidden(!canceller());
    m_hud->line->setHidden(!canceller());
    view->addSubview(self(this));
    view->bringSubviewToFront(self(this));
    place();
}

const std::string& UIProgressHUD::text() const { return m_hud->label->text(); }

void UIProgressHUD::setText(std::string text) {
    if (text == m_hud->label->text()) return;
    m_hud->label->setText(std::move(text));
    place();
}

void UIProgressHUD::hide() { removeFromSuperview(); }
bool UIProgressHUD::isShown() const { return superview() != nullptr; }

// Turning costs wake-ups, so it is for the eye only.
void UIProgressHUD::didMoveToWindow() {
    UIView::didMoveToWindow();
    m_hud->spinner->setTurning(window() != nullptr);
}

void UIProgressHUD::layoutSubviews() { place(); }

void UIProgressHUD::place() {
    const auto view = superview();
    if (!view) return;
    const CGSize area = view->bounds().size;
    const bool hasText = !text().empty();
    const double buttonHeight = m_hud->button->isHidden() ? 0 : wayOutHeight;
    CGSize label;
    double padding = usualPadding;
    double textTop = 0;
    double textBottom = 0;
    auto font = appearance::textFont(15);
    const auto fit = [&](double margin, double aroundText, bool hasSpinner) {
        padding = aroundText;
        const double widest = mostWidth * std::max(1.0, controlTextScale());
        const double most = std::max(0.0, std::min(widest, area.width - 2 * margin) - 2 * padding);
        label = hasText ? measureText(textRuns(text(), font, nullptr), most, /*lines=*/0).size : CGSize{};
        label = CGSizeMake(std::min(std::ceil(label.width), most), std::ceil(label.height));
        textTop = padding + (hasSpinner ? spinnerSize + space : 0);
        textBottom = (hasText ? textTop + label.height : textTop - space) + padding;
        m_hud->spinner->setHidden(!hasSpinner);
        // In the middle, and not under a bar.
        return textBottom + buttonHeight <= area.height - 2 * appearance::barHeight;
    };
    // Where it would not be in sight as a whole, what is no text gives way.
    if (!fit(viewMargin, usualPadding, /*hasSpinner=*/true) && hasText && !fit(leastViewMargin, leastPadding, true))
        while (!fit(leastViewMargin, leastPadding, /*hasSpinner=*/false) && font->pointSize() > 15)
            font = UIFont::systemFontOfSize(std::max(15.0, font->pointSize() - 2));
    if (m_hud->label->font() != font) m_hud->label->setFont(font);
    const double width = std::max(leastWidth, label.width + 2 * padding);
    const double height = textBottom + buttonHeight;
    setFrame(CGRectMake(appearance::roundToPixel((area.width - width) / 2),
                        appearance::roundToPixel((area.height - height) / 2), width, height));
    // By its centre: it is turned.
    m_hud->spinner->setCenter(CGPointMake(width / 2, padding + spinnerSize / 2));
    m_hud->label->setFrame(CGRectMake(std::floor((width - label.width) / 2), textTop, label.width, label.height));
    m_hud->line->setFrame(CGRectMake(0, textBottom, width, appearance::hairline()));
    m_hud->button->setFrame(CGRectMake(0, textBottom, width, wayOutHeight));
}

UIAccessibilityRole UIProgressHUD::accessibilityRole() const { return UIAccessibilityRole::ProgressIndicator; }
std::string UIProgressHUD::accessibilityLabel() const { return text(); }

bool UIProgressHUD::accessibilityPerformEscape() {
    if (m_hud->button->isHidden()) return UIView::accessibilityPerformEscape();
    cancelTapped();
    return true;
}

void UIProgressHUD::cancelTapped() {
    const auto cancel = canceller(); // it may be replaced meanwhile
    if (cancel) cancel();
}

// What lies below the panel hears nothing of the touches on it.
void UIProgressHUD::touchesBegan_withEvent(const UITouchList&, UIEvent&) {}
void UIProgressHUD::touchesMoved_withEvent(const UITouchList&, UIEvent&) {}
void UIProgressHUD::touchesEnded_withEvent(const UITouchList&, UIEvent&) {}
void UIProgressHUD::touchesCancelled_withEvent(const UITouchList&, UIEvent&) {}
