#include "desktop/mail/ComposeView.h"

#include "desktop/mail/message_body.h"
#include "kit/foundation/translation.h"
#include "kit/quartz/geometry.h"
#include "kit/quartz/text_size.h"
#include "kit/uikit/appearance.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace seat {

using namespace appearance;

namespace {

constexpr double notePadding = 10; // above and below

// A note that assistive technology reads out when it comes.
class FailureNote final : public UILabel {
    NS_CLASS(FailureNote)
public:
    UIAccessibilityRole accessibilityRole() const override { return UIAccessibilityRole::Alert; }
};
NS_CLASS_IMPLEMENTATION(FailureNote, UILabel)

std::shared_ptr<UIView> line() {
    const auto view = UIView::alloc()->init();
    view->setBackgroundColor(separatorColor());
    return view;
}

} // namespace

NS_CLASS_IMPLEMENTATION(ComposeView, UIView)

ComposeView::~ComposeView() = default;

std::shared_ptr<ComposeView> ComposeView::initWithTitle(const std::string& title) {
    if (!UIView::initWithFrame(CGRectMake(0, 0, 375, 667))) return nullptr;
    setBackgroundColor(cardColor());
    m_bar = UIView::alloc()->init();
    m_bar->setBackgroundColor(barColor());
    addSubview(m_bar);
    m_cancel = TextButton::alloc()->initWithTitle_kind(translated("Cancel"), TextButton::Kind::Plain);
    m_bar->addSubview(m_cancel);
    m_title = UILabel::alloc()->init();
    m_title->setFont(boldControlFont());
    m_title->setText(title);
    m_title->setTextAlignment(NSTextAlignmentCenter);
    m_bar->addSubview(m_title);
    m_open = TextButton::alloc()->initWithTitle_kind(translated("Open"), TextButton::Kind::Bold);
    m_bar->addSubview(m_open);
    m_barLine = line();
    m_bar->addSubview(m_barLine);
    m_message = UIScrollView::alloc()->initWithFrame(CGRectZero);
    addSubview(m_message);
    m_noteLine = line();
    addSubview(m_noteLine);
    const auto note = UILabel::alloc()->init();
    note->setTextColor(secondaryTextColor());
    note->setText(translated("Opens in your mail program, where you write whom it is for and send it. Nothing is sent "
                             "from here."));
    setNote(note);
    return self(this);
}

void ComposeView::setNote(std::shared_ptr<UILabel> note) {
    if (m_note) m_note->removeFromSuperview();
    m_note = std::move(note);
    m_note->setFont(textFont(14));
    m_note->setNumberOfLines(0);
    m_note->setTextAlignment(startAlignment());
    insertSubview_atIndex(m_note, 1); // read after the bar, before the message
    setNeedsLayout();
}

void ComposeView::setBlocks(std::vector<HTMLBlock> blocks) {
    m_blocks = std::move(blocks);
    m_messageWidth = 0;
    setNeedsLayout();
}

void ComposeView::beginHandOver() { m_open->setEnabled(false); }

void ComposeView::showHandOverFailed() {
    m_open->setEnabled(true);
    // A new one each time, so that it is read out each time.
    const auto note = FailureNote::alloc();
    note->init();
    note->setTextColor(errorTextColor());
    note->setText(
        translated("Your mail program could not be started, so the message is still here. Try again, or cancel."));
    setNote(note);
}

void ComposeView::layoutSubviews() {
    UIView::layoutSubviews();
    const double width = bounds().size.width;
    m_bar->setFrame(CGRectMake(0, 0, width, barHeight));
    m_barLine->setFrame(CGRectMake(0, barHeight - hairline(), width, hairline()));
    const double cancelWidth = m_cancel->sizeThatFits({width, barHeight}).width;
    const double openWidth = m_open->sizeThatFits({width, barHeight}).width;
    m_cancel->setFrame(inDirection(CGRectMake(sideMargin, 0, cancelWidth, barHeight), width));
    m_open->setFrame(inDirection(CGRectMake(width - sideMargin - openWidth, 0, openWidth, barHeight), width));
    // In the middle, or between the two where that is too narrow for it.
    const double titleWidth = std::ceil(m_title->sizeThatFits({1e6, 1e6}).width);
    const double beside = 2 * sideMargin + std::max(cancelWidth, openWidth);
    const bool isCentred = titleWidth <= width - 2 * beside || textScale() <= 1;
    const double titleLeft = isCentred ? beside : sideMargin + cancelWidth + labelGap;
    const double titleRight = isCentred ? width - beside : width - sideMargin - openWidth - labelGap;
    m_title->setFrame(inDirection(CGRectMake(titleLeft, 0, std::max(0.0, titleRight - titleLeft), barHeight), width));

    const double left = messageMargin(width);
    const double noteWidth = std::max(1.0, width - 2 * left);
    const double noteHeight = m_note->sizeThatFits({noteWidth, 1e6}).height;
    m_note->setFrame(CGRectMake(left, barHeight + notePadding, noteWidth, noteHeight));
    // A note that would leave little of the message scrolls with it.
    const double height = bounds().size.height - barHeight;
    const bool isScrolled = noteHeight + 2 * notePadding > height / 2;
    const double top = isScrolled ? barHeight : barHeight + noteHeight + 2 * notePadding;
    m_noteLine->setFrame(CGRectMake(left, top - hairline(), std::max(0.0, width - left), hairline()));
    m_noteLine->setHidden(isScrolled);
    placeNote(isScrolled);
    if (isScrolled) m_note->setFrame(CGRectMake(left, -noteHeight - notePadding, noteWidth, noteHeight));

    m_message->setFrame(CGRectMake(0, top, width, std::max(0.0, bounds().size.height - top)));
    if (m_messageWidth == width && m_messageText == textGeneration()) return;
    m_messageWidth = width;
    m_messageText = textGeneration();
    m_message->setContentSize(CGSizeMake(width, layOutMessage(*m_message, m_blocks, width)));
    if (isScrolled) m_message->insertSubview_atIndex(m_note, 0);
}

void ComposeView::placeNote(bool isScrolled) {
    UIView& place = isScrolled ? static_cast<UIView&>(*m_message) : *this;
    if (m_note->superview().get() == &place) return;
    place.insertSubview_atIndex(m_note, isScrolled ? 0 : 1);
    const double room = isScrolled ? m_note->bounds().size.height + 2 * notePadding : 0;
    m_message->setContentInset({room, 0, 0, 0});
    m_message->setContentOffset({0, -room});
}

} // namespace seat
