#include "app/help/TryScreen.h"

#include "app/help/CardView.h"
#include "app/help/ColumnView.h"
#include "app/help/PadView.h"
#include "app/help/pad_text.h"
#include "kit/controllers/ControllerInternals.h"
#include "kit/controllers/TextButton.h"
#include "kit/foundation/translation.h"
#include "kit/uikit/appearance.h"
#include "platform/runtime/method.h"

#include <utility>

namespace app {

using namespace seat::appearance;
using seat::TextButton;
using seat::translated;

NS_CLASS_IMPLEMENTATION(TryScreen, UIViewController, method<&TryScreen::retryTapped>("retryTapped"),
                        method<&TryScreen::closeTapped>("closeTapped"))

TryScreen::~TryScreen() = default;

std::shared_ptr<TryScreen> TryScreen::initWithSocket_close(std::optional<std::string> socketPath,
                                                           std::function<void()> close) {
    if (!UIViewController::init()) return nullptr;
    m_socketPath = std::move(socketPath);
    m_close = std::move(close);
    setTitle(translated("Try It"));
    if (m_close) {
        const auto button = TextButton::alloc()->initWithTitle_kind(translated("Close"), TextButton::Kind::Bold);
        button->addTarget_action_forControlEvents(self(this), "closeTapped", UIControlEventTouchUpInside);
        ControllerInternals::setBarButton(*this, button);
    }
    return self(this);
}

void TryScreen::loadView() {
    const auto label = [](const std::shared_ptr<UIFont>& font, const std::shared_ptr<UIColor>& color) {
        const auto made = UILabel::alloc()->initWithFrame(CGRectZero);
        made->setFont(font);
        made->setTextColor(color);
        made->setTextAlignment(NSTextAlignmentCenter);
        made->setNumberOfLines(0);
        return made;
    };
    m_column = ColumnView::alloc()->init();
    m_pad = PadView::alloc()->initWithMostHeight(0.5);
    m_headline = label(boldTextFont(20), textColor());
    m_text = label(textFont(15), secondaryTextColor());
    const auto retry = TextButton::alloc()->initWithTitle_kind(translated("Try Again"), TextButton::Kind::Row);
    retry->addTarget_action_forControlEvents(self(this), "retryTapped", UIControlEventTouchUpInside);
    m_retry = CardView::alloc()->init();
    m_retry->add(retry);
    m_column->add(m_pad, 20);
    m_column->add(m_headline, 20);
    m_column->add(m_text, 8);
    m_column->add(m_retry, 24);
    setView(m_column);
    refresh();
}

void TryScreen::viewWillAppear(bool animated) {
    UIViewController::viewWillAppear(animated);
    if (m_socketPath && !m_watch) {
        m_watch.emplace([this] { refresh(); });
        m_watch->open(*m_socketPath);
    }
    refresh();
}

// The keyboard is given back at once.
void TryScreen::viewDidDisappear(bool animated) {
    UIViewController::viewDidDisappear(animated);
    m_watch.reset();
}

void TryScreen::refresh() {
    if (!m_column) return;
    const auto* const state = m_watch && m_watch->state() ? &*m_watch->state() : nullptr;
    const bool isExtended = state && state->profile == input::Profile::extended;
    m_pad->show(state ? state->inputs : 0, isExtended ? PadView::Parts::Extended : PadView::Parts::Plain);
    const PadText text = !m_socketPath ? simulatedText()
                         : !m_watch    ? PadText{}
                         : state       ? textOf(*state)
                                       : problemText(m_watch->problem());
    m_headline->setText(text.headline);
    m_text->setText(text.advice);
    m_retry->setHidden(!m_watch || m_watch->problem().empty());
    m_column->setNeedsLayout();
}

void TryScreen::retryTapped() {
    if (m_watch && m_socketPath) m_watch->open(*m_socketPath);
    refresh();
}

void TryScreen::closeTapped() {
    const auto keep = self(this);
    const auto close = m_close;
    if (close) close();
}

bool TryScreen::accessibilityPerformEscape() {
    if (!m_close) return UIViewController::accessibilityPerformEscape();
    closeTapped();
    return true;
}

} // namespace app
