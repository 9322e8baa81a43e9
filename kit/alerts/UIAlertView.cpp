#include "platform/uikit/UIAlertView.h"

#include "kit/alerts/AlertQueue.h"
#include "kit/alerts/alert_state.h"
#include "kit/quartz/geometry.h"
#include "kit/quartz/text_size.h"
#include "kit/tables/CellParts.h"
#include "kit/uikit/appearance.h"
#include "platform/runtime/method.h"

#include <algorithm>
#include <cmath>
#include <utility>

using namespace seat;
using namespace seat::appearance;

NS_CLASS_IMPLEMENTATION(UIAlertView, UIView, method<&UIAlertView::buttonTapped>("buttonTapped:"))

namespace {

constexpr double usualCardWidth = 270;
constexpr double cardRadius = 14;
constexpr double buttonHeight = 44;
constexpr double textMargin = 16;
constexpr double topPadding = 20;
constexpr double textSpace = 4; // between title and message
constexpr double windowMargin = 20;
constexpr double fadeDuration = 0.2;

std::shared_ptr<UILabel> makeLabel(const std::string& text, std::shared_ptr<UIFont> font) {
    auto label = UILabel::alloc()->initWithFrame(CGRectZero);
    label->setText(text);
    label->setFont(std::move(font));
    label->setTextAlignment(NSTextAlignmentCenter);
    label->setNumberOfLines(0);
    return label;
}

double heightOf(const UILabel& label, double width) {
    return label.text().empty() ? 0 : std::ceil(label.sizeThatFits({width, 1e6}).height);
}

double cardWidthIn(CGSize window) {
    return std::max(usualCardWidth, std::min(usualCardWidth * controlTextScale(), window.width - 2 * windowMargin));
}

} // namespace

UIAlertView::UIAlertView() : m_alert(std::make_unique<State>()) {}
UIAlertView::~UIAlertView() = default;

std::shared_ptr<UIAlertView> UIAlertView::initWithTitle_message_delegate_cancelButtonTitle_otherButtonTitles(
    std::string title, std::string message, const std::shared_ptr<UIAlertViewDelegate>& delegate,
    std::string cancelButtonTitle, std::vector<std::string> otherButtonTitles) {
    if (!UIView::initWithFrame(CGRectZero)) return nullptr;
    m_alert->title = std::move(title);
    m_alert->message = std::move(message);
    m_alert->delegate = delegate;
    m_alert->buttonTitles = std::move(otherButtonTitles);
    m_alert->buttonTitles.insert(m_alert->buttonTitles.begin(), std::move(cancelButtonTitle));

    setBackgroundColor(UIColor::colorWithWhite_alpha(0, 0.4));
    setAutoresizingMask(UIViewAutoresizingFlexibleWidth | UIViewAutoresizingFlexibleHeight);
    setAccessibilityViewIsModal(true);
    m_alert->card = UIView::alloc()->initWithFrame(CGRectZero);
    m_alert->card->setBackgroundColor(cardColor());
    m_alert->card->layer()->setCornerRadius(cardRadius);
    m_alert->card->setClipsToBounds(true);
    m_alert->texts = UIScrollView::alloc()->initWithFrame(CGRectZero);
    m_alert->titleLabel = makeLabel(m_alert->title, boldTextFont(17));
    m_alert->messageLabel = makeLabel(m_alert->message, textFont(13));
    m_alert->texts->addSubview(m_alert->titleLabel);
    m_alert->texts->addSubview(m_alert->messageLabel);
    m_alert->card->addSubview(m_alert->texts);
    const bool hasChoice = m_alert->buttonTitles.size() > 1;
    for (const auto& text : m_alert->buttonTitles) {
        // The button that changes nothing is the bold one, where there is a choice; alone it needs no stress.
        const bool isCancel = m_alert->buttons.empty();
        const auto button = TextButton::alloc()->initWithTitle_kind(
            text, isCancel && hasChoice ? TextButton::Kind::Bold : TextButton::Kind::Plain);
        button->addTarget_action_forControlEvents(shared_from_this(), "buttonTapped:", UIControlEventTouchUpInside);
        m_alert->buttons.push_back(button);
        m_alert->lines.push_back(UIView::alloc()->initWithFrame(CGRectZero));
        m_alert->lines.back()->setBackgroundColor(separatorColor());
        m_alert->card->addSubview(button);
    }
    for (const auto& line : m_alert->lines) m_alert->card->addSubview(line);
    addSubview(m_alert->card);
    return self(this);
}

const std::string& UIAlertView::title() const { return m_alert->title; }
const std::string& UIAlertView::message() const { return m_alert->message; }
const std::vector<std::string>& UIAlertView::buttonTitles() const { return m_alert->buttonTitles; }
bool UIAlertView::isVisible() const { return window() != nullptr && !m_alert->isDismissing; }
void UIAlertView::show() { AlertQueue::shared().add(self(this)); }

void UIAlertView::appearIn(UIWindow& window) {
    m_alert->hasAppeared = true;
    setFrame(window.bounds());
    window.addSubview(self(this));
    layoutIfNeeded();
    // The return key answers with the last button, which is the only one or the one that goes on.
    window.setFocusedView(m_alert->buttons.back());
    setAlpha(0);
    m_alert->card->setTransform(CGAffineTransformMakeScale(1.15, 1.15));
    UIView::animateWithDuration_animations(fadeDuration, [this] {
        setAlpha(1);
        m_alert->card->setTransform(CGAffineTransformIdentity);
    });
}

void UIAlertView::dismissWithClickedButtonIndex_animated(long buttonIndex, bool animated) {
    if (m_alert->isDismissing || !AlertQueue::shared().contains(*this)) return;
    const auto alert = self(this);
    if (!animated || !window()) return AlertQueue::shared().remove(alert, buttonIndex);
    m_alert->isDismissing = true;
    UIView::animateWithDuration_animations_completion(
        fadeDuration, [this] { setAlpha(0); },
        [alert, buttonIndex](bool) {
            alert->m_alert->isDismissing = false;
            AlertQueue::shared().remove(alert, buttonIndex);
        });
}

void UIAlertView::buttonTapped(const std::shared_ptr<UIView>& button) {
    const auto& buttons = m_alert->buttons;
    const auto at = std::find(buttons.begin(), buttons.end(), button);
    if (at != buttons.end()) dismissWithClickedButtonIndex_animated(at - buttons.begin(), /*animated=*/true);
}

void UIAlertView::layoutSubviews() {
    const CGSize window = bounds().size;
    const double cardWidth = cardWidthIn(window);
    const double textWidth = cardWidth - 2 * textMargin;
    const double titleHeight = heightOf(*m_alert->titleLabel, textWidth);
    const double messageHeight = heightOf(*m_alert->messageLabel, textWidth);
    const double between = titleHeight > 0 && messageHeight > 0 ? textSpace : 0;
    const double textHeight = topPadding + titleHeight + between + messageHeight + topPadding;
    const std::size_t rows = m_alert->hasButtonsSideBySide(cardWidth) ? 1 : m_alert->buttons.size();
    const double buttonsHeight = static_cast<double>(rows) * buttonHeight;
    const double shownHeight = std::max(0.0, std::min(textHeight, window.height - 2 * windowMargin - buttonsHeight));

    const CGSize card = CGSizeMake(cardWidth, shownHeight + buttonsHeight);
    m_alert->card->setBounds(CGRectMake(0, 0, card.width, card.height));
    m_alert->card->setCenter(CGPointMake(roundToPixel((window.width - card.width) / 2) + card.width / 2,
                                         roundToPixel((window.height - card.height) / 2) + card.height / 2));
    m_alert->texts->setFrame(CGRectMake(0, 0, card.width, shownHeight));
    m_alert->texts->setContentSize(CGSizeMake(card.width, textHeight));
    m_alert->titleLabel->setFrame(CGRectMake(textMargin, topPadding, textWidth, titleHeight));
    m_alert->messageLabel->setFrame(
        CGRectMake(textMargin, topPadding + titleHeight + between, textWidth, messageHeight));
    layOutButtons(shownHeight);
}

// Two stand side by side where they find room, the cancel button at the left; others one below the other, the cancel
// button last.
void UIAlertView::layOutButtons(double top) {
    const double cardWidth = m_alert->card->bounds().size.width;
    const auto& buttons = m_alert->buttons;
    for (std::size_t i = 0; i < buttons.size(); ++i) {
        const auto& line = m_alert->lines[i];
        if (m_alert->hasButtonsSideBySide(cardWidth)) {
            const double width = cardWidth / 2;
            buttons[i]->setFrame(
                inDirection(CGRectMake(static_cast<double>(i) * width, top, width, buttonHeight), cardWidth));
            line->setFrame(i == 0 ? CGRectMake(0, top, cardWidth, hairline())
                                  : CGRectMake(width, top, hairline(), buttonHeight));
        } else {
            const std::size_t place = i == 0 ? buttons.size() - 1 : i - 1;
            const double y = top + static_cast<double>(place) * buttonHeight;
            buttons[i]->setFrame(CGRectMake(0, y, cardWidth, buttonHeight));
            line->setFrame(CGRectMake(0, y, cardWidth, hairline()));
        }
    }
}

UIAccessibilityRole UIAlertView::accessibilityRole() const { return UIAccessibilityRole::Alert; }

std::string UIAlertView::accessibilityLabel() const {
    const char* const separator = m_alert->title.empty() || m_alert->message.empty() ? "" : "\n";
    return m_alert->title + separator + m_alert->message;
}

bool UIAlertView::accessibilityPerformEscape() {
    dismissWithClickedButtonIndex_animated(0, /*animated=*/true);
    return true;
}

// What lies below the alert hears nothing of the touches beside its card.
void UIAlertView::touchesBegan_withEvent(const UITouchList&, UIEvent&) {}
void UIAlertView::touchesMoved_withEvent(const UITouchList&, UIEvent&) {}
void UIAlertView::touchesEnded_withEvent(const UITouchList&, UIEvent&) {}
void UIAlertView::touchesCancelled_withEvent(const UITouchList&, UIEvent&) {}
