#include "platform/uikit/UIProgressHUD.h"

#include "kit/alerts/Spinner.h"
#include "kit/tables/CellParts.h"
#include "kit/uikit/appearance.h"

#include <algorithm>
#include <cmath>

using namespace seat;

NS_CLASS_IMPLEMENTATION(UIProgressHUD, UIView)

namespace {

constexpr double spinnerSize = 36;
constexpr double padding = 24;
constexpr double space = 16; // between spinner and text
constexpr double leastWidth = 140;
constexpr double mostWidth = 300;
constexpr double viewMargin = 24;

} // namespace

struct UIProgressHUD::State {
    std::shared_ptr<UIView> panel;
    std::shared_ptr<Spinner> spinner;
    std::shared_ptr<UILabel> label;
};

UIProgressHUD::UIProgressHUD() : m_hud(std::make_unique<State>()) {}
UIProgressHUD::~UIProgressHUD() = default;

std::shared_ptr<UIProgressHUD> UIProgressHUD::init() {
    if (!UIView::initWithFrame(CGRectZero)) return nullptr;
    setAutoresizingMask(UIViewAutoresizingFlexibleWidth | UIViewAutoresizingFlexibleHeight);
    m_hud->panel = UIView::alloc()->initWithFrame(CGRectZero);
    m_hud->panel->setBackgroundColor(UIColor::colorWithWhite_alpha(0.1, 0.95));
    m_hud->panel->layer()->setCornerRadius(12);
    m_hud->spinner = Spinner::alloc()->initWithSize(spinnerSize);
    m_hud->label = CellLabel::alloc()->initWithFrame(CGRectZero);
    m_hud->label->setFont(UIFont::systemFontOfSize(15));
    m_hud->label->setTextColor(UIColor::whiteColor());
    m_hud->label->setTextAlignment(NSTextAlignmentCenter);
    m_hud->label->setNumberOfLines(0);
    m_hud->panel->addSubview(m_hud->spinner);
    m_hud->panel->addSubview(m_hud->label);
    addSubview(m_hud->panel);
    return self(this);
}

void UIProgressHUD::showInView(const std::shared_ptr<UIView>& view) {
    if (!view) return;
    setFrame(view->bounds());
    view->addSubview(self(this));
    view->bringSubviewToFront(self(this));
    setNeedsLayout();
}

const std::string& UIProgressHUD::text() const { return m_hud->label->text(); }

void UIProgressHUD::setText(std::string text) {
    if (text == m_hud->label->text()) return;
    m_hud->label->setText(std::move(text));
    setNeedsLayout();
}

void UIProgressHUD::hide() { removeFromSuperview(); }
bool UIProgressHUD::isShown() const { return superview() != nullptr; }

// Turning costs wake-ups, so it is for the eye only.
void UIProgressHUD::didMoveToWindow() {
    UIView::didMoveToWindow();
    m_hud->spinner->setTurning(window() != nullptr);
}

void UIProgressHUD::layoutSubviews() {
    const CGSize area = bounds().size;
    const double most = std::max(0.0, std::min(mostWidth, area.width - 2 * viewMargin) - 2 * padding);
    const bool hasText = !text().empty();
    CGSize label = hasText ? m_hud->label->sizeThatFits({most, 1e6}) : CGSize{};
    label = CGSizeMake(std::min(std::ceil(label.width), most), std::ceil(label.height));
    const double width = std::max(leastWidth, label.width + 2 * padding);
    const double height = padding + spinnerSize + (hasText ? space + label.height : 0) + padding;
    m_hud->panel->setFrame(CGRectMake(appearance::roundToPixel((area.width - width) / 2),
                                      appearance::roundToPixel((area.height - height) / 2), width, height));
    // By its centre: it is turned.
    m_hud->spinner->setCenter(CGPointMake(width / 2, padding + spinnerSize / 2));
    m_hud->label->setFrame(
        CGRectMake(std::floor((width - label.width) / 2), padding + spinnerSize + space, label.width, label.height));
}

UIAccessibilityRole UIProgressHUD::accessibilityRole() const { return UIAccessibilityRole::ProgressIndicator; }
std::string UIProgressHUD::accessibilityLabel() const { return text(); }

// The covered view hears nothing of the touches.
void UIProgressHUD::touchesBegan_withEvent(const UITouchList&, UIEvent&) {}
void UIProgressHUD::touchesMoved_withEvent(const UITouchList&, UIEvent&) {}
void UIProgressHUD::touchesEnded_withEvent(const UITouchList&, UIEvent&) {}
void UIProgressHUD::touchesCancelled_withEvent(const UITouchList&, UIEvent&) {}
