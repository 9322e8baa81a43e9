#include "app/FailureBanner.h"

#include "kit/uikit/UIWindow.h"
#include "platform/runtime/method.h"

#include <algorithm>

namespace {

constexpr double margin = 12;  // to the window's edges
constexpr double padding = 14; // around the text
constexpr double widest = 520;
constexpr double fadeSeconds = 0.25;

} // namespace

namespace app {

NS_CLASS_IMPLEMENTATION(FailureBanner, UIView)

FailureBanner::~FailureBanner() { seat::removeSource(m_timer); }

std::shared_ptr<FailureBanner> FailureBanner::initWithText(std::string text) {
    if (!UIView::init()) return nullptr;
    m_label = UILabel::alloc()->init();
    m_label->setText(std::move(text));
    m_label->setNumberOfLines(0);
    m_label->setFont(UIFont::systemFontOfSize(14));
    m_label->setTextColor(UIColor::whiteColor());
    addSubview(m_label);
    setBackgroundColor(UIColor::colorWithWhite_alpha(0.13, 0.92));
    layer()->setCornerRadius(10);
    setUserInteractionEnabled(false);
    // Another width leads to another layout, which places it.
    setAutoresizingMask(UIViewAutoresizingFlexibleTopMargin | UIViewAutoresizingFlexibleWidth);
    return self(this);
}

void FailureBanner::showInWindow(const std::shared_ptr<UIWindow>& window, double seconds) {
    if (!window) return;
    seat::removeSource(m_timer);
    m_timer = seat::addTimer(seconds, [this] { hide(); });
    if (m_isShown && superview() == window) return;
    m_isShown = true;
    window->addSubview(self(this));
    place();
    setAlpha(0);
    UIView::animateWithDuration_animations(fadeSeconds, [this] { setAlpha(1); });
}

void FailureBanner::hide() {
    seat::removeSource(m_timer);
    m_timer = 0;
    if (!m_isShown) return;
    m_isShown = false;
    UIView::animateWithDuration_animations_completion(
        fadeSeconds, [this] { setAlpha(0); },
        [banner = self(this)](bool) {
            // It may have been shown again meanwhile.
            if (!banner->m_isShown) banner->removeFromSuperview();
        });
}

void FailureBanner::place() {
    const auto window = superview();
    if (!window) return;
    const CGSize around = window->bounds().size;
    const double width = std::min(widest, around.width - 2 * margin);
    const double height = m_label->sizeThatFits({width - 2 * padding, 1000}).height + 2 * padding;
    setFrame({{(around.width - width) / 2, around.height - height - margin}, {width, height}});
}

void FailureBanner::layoutSubviews() {
    UIView::layoutSubviews();
    place();
    m_label->setFrame(CGRectInset(bounds(), padding, padding));
}

std::string FailureBanner::accessibilityLabel() const { return m_label ? m_label->text() : std::string(); }

} // namespace app
