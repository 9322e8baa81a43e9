#include "app/NoticeView.h"

#include "kit/controllers/TextButton.h"
#include "kit/foundation/translation.h"
#include "kit/quartz/geometry.h"
#include "kit/tables/CellParts.h"
#include "kit/uikit/appearance.h"
#include "platform/runtime/method.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

constexpr double topPadding = 12; // above the text
constexpr double buttonHeight = 44;
constexpr double mostOfWindow = 0.5;
constexpr double buttonGap = 24;

// As wide as rows are.
CGRect column(CGSize area) {
    using namespace seat::appearance;
    const double width = std::max(1.0, std::min(readableWidth, area.width) - 2 * sideMargin);
    return {{std::floor((area.width - width) / 2), 0}, {width, area.height}};
}

} // namespace

namespace app {

using namespace seat::appearance;
using seat::TextButton;
using seat::translated;

NS_CLASS_IMPLEMENTATION(NoticeView, UIView, method<&NoticeView::closeTapped>("closeTapped"),
                        method<&NoticeView::actionTapped>("actionTapped"))

NoticeView::~NoticeView() = default;

std::shared_ptr<NoticeView> NoticeView::initWithClosed_acted(std::function<void()> closed,
                                                             std::function<void()> acted) {
    if (!UIView::initWithFrame(CGRectZero)) return nullptr;
    m_closed = std::move(closed);
    m_acted = std::move(acted);
    setBackgroundColor(cardColor());
    m_line = UIView::alloc()->initWithFrame(CGRectZero);
    m_line->setBackgroundColor(separatorColor());
    m_texts = UIScrollView::alloc()->initWithFrame(CGRectZero);
    m_label = seat::CellLabel::alloc()->initWithFrame(CGRectZero);
    m_label->setFont(textFont(15));
    m_label->setNumberOfLines(0);
    m_label->setTextAlignment(startAlignment());
    m_texts->addSubview(m_label);
    m_close = TextButton::alloc()->initWithTitle_kind(translated("Close"), TextButton::Kind::Plain);
    m_close->addTarget_action_forControlEvents(shared_from_this(), "closeTapped", UIControlEventTouchUpInside);
    addSubview(m_line);
    addSubview(m_texts);
    addSubview(m_close);
    return self(this);
}

void NoticeView::show(const std::string& text, const std::string& actionTitle) {
    m_label->setText(text);
    if (actionTitle != m_actionTitle) {
        if (m_action) m_action->removeFromSuperview();
        m_action = nullptr;
        if (!actionTitle.empty()) {
            m_action = TextButton::alloc()->initWithTitle_kind(actionTitle, TextButton::Kind::Bold);
            m_action->addTarget_action_forControlEvents(shared_from_this(), "actionTapped",
                                                        UIControlEventTouchUpInside);
            addSubview(m_action);
        }
        m_actionTitle = actionTitle;
    }
    setNeedsLayout();
}

double NoticeView::heightIn(CGSize window) const {
    const double width = column(window).size.width;
    const double buttons = buttonsHeight(width);
    const double text = topPadding + std::ceil(m_label->sizeThatFits({width, 1e6}).height);
    // Something of the text is in sight in any window.
    const double most = std::max(topPadding + std::ceil(m_label->font()->lineHeight()),
                                 std::floor(window.height * mostOfWindow) - buttons);
    return std::min(text, most) + buttons;
}

bool NoticeView::hasButtonsBelow(double width) const {
    if (!m_action) return false;
    const auto widthOf = [&](const TextButton& button) { return button.sizeThatFits({width, buttonHeight}).width; };
    return widthOf(*m_close) + buttonGap + widthOf(*m_action) > width;
}

double NoticeView::buttonsHeight(double width) const { return (hasButtonsBelow(width) ? 2 : 1) * buttonHeight; }

void NoticeView::layoutSubviews() {
    UIView::layoutSubviews();
    const auto around = superview();
    if (around && wantsPlace && heightIn(around->bounds().size) != bounds().size.height) wantsPlace();
    const CGSize size = bounds().size;
    const CGRect area = column(size);
    m_line->setFrame(CGRectMake(0, 0, size.width, hairline()));
    const bool isBelow = hasButtonsBelow(area.size.width);
    const double textHeight = std::max(0.0, size.height - buttonsHeight(area.size.width));
    m_texts->setFrame(CGRectMake(area.origin.x, hairline(), area.size.width, textHeight - hairline()));
    const double wanted = std::ceil(m_label->sizeThatFits({area.size.width, 1e6}).height);
    m_label->setFrame(CGRectMake(0, topPadding, area.size.width, wanted));
    m_texts->setContentSize(CGSizeMake(area.size.width, topPadding + wanted));
    double right = CGRectGetMaxX(area);
    double top = size.height - buttonHeight;
    for (const auto& button : {m_close, m_action}) {
        if (!button) continue;
        const double width = std::min(area.size.width, button->sizeThatFits({area.size.width, buttonHeight}).width);
        button->setFrame(inDirection(CGRectMake(right - width, top, width, buttonHeight), size.width));
        if (isBelow)
            top -= buttonHeight;
        else
            right -= width + buttonGap;
    }
}

std::string NoticeView::accessibilityLabel() const { return m_label ? m_label->text() : std::string(); }

bool NoticeView::accessibilityPerformEscape() {
    closeTapped();
    return true;
}

void NoticeView::closeTapped() {
    const auto keep = shared_from_this();
    if (m_closed) m_closed();
}

void NoticeView::actionTapped() {
    const auto keep = shared_from_this();
    if (m_acted) m_acted();
}

} // namespace app
