#include "platform/mail.h"

#include "desktop/links/DefaultApplication.h"
#include "desktop/mail/ComposeHeader.h"
#include "desktop/mail/html_blocks.h"
#include "desktop/mail/mail_draft.h"
#include "desktop/mail/message_body.h"
#include "kit/controllers/TextButton.h"
#include "kit/uikit/appearance.h"
#include "platform/foundation/NSError.h"
#include "platform/runtime/method.h"
#include "platform/uikit/UILabel.h"
#include "platform/uikit/UIWindow.h"

#include <algorithm>
#include <utility>

NS_CLASS_IMPLEMENTATION(MFMailComposeViewController, UIViewController,
                        method<&MFMailComposeViewController::cancelTapped>("cancelTapped"),
                        method<&MFMailComposeViewController::sendTapped>("sendTapped"))

namespace {

constexpr const char* messageType = "message/rfc822";
constexpr int cancelTag = 1;
constexpr int sendTag = 2;
constexpr int titleTag = 3;

} // namespace

MFMailComposeViewController::MFMailComposeViewController() = default;
MFMailComposeViewController::~MFMailComposeViewController() = default;

bool MFMailComposeViewController::canSendMail() { return seat::defaultApplication(messageType).has_value(); }

std::shared_ptr<MFMailComposeViewController> MFMailComposeViewController::init() {
    if (!UIViewController::init()) return nullptr;
    setTitle("New Message");
    return self(this);
}

void MFMailComposeViewController::setMailComposeDelegate(
    const std::shared_ptr<MFMailComposeViewControllerDelegate>& delegate) {
    m_delegate = delegate;
}

void MFMailComposeViewController::setMessageBody_isHTML(std::string body, bool isHTML) {
    m_body = std::move(body);
    m_bodyIsHTML = isHTML;
    if (const auto view = viewIfLoaded()) view->setNeedsLayout();
}

void MFMailComposeViewController::loadView() {
    using seat::TextButton;
    namespace appearance = seat::appearance;
    const auto root = UIView::alloc()->initWithFrame(CGRectMake(0, 0, 375, 667));
    root->setBackgroundColor(UIColor::whiteColor());

    m_bar = UIView::alloc()->init();
    m_bar->setBackgroundColor(appearance::barColor());
    const auto cancel = TextButton::alloc()->initWithTitle_kind("Cancel", TextButton::Kind::Plain);
    cancel->setTag(cancelTag);
    cancel->addTarget_action_forControlEvents(self(this), "cancelTapped", UIControlEventTouchUpInside);
    m_bar->addSubview(cancel);
    const auto heading = UILabel::alloc()->init();
    heading->setFont(UIFont::boldSystemFontOfSize(17));
    heading->setText(title());
    heading->setTag(titleTag);
    heading->setTextAlignment(NSTextAlignmentCenter);
    m_bar->addSubview(heading);
    const auto send = TextButton::alloc()->initWithTitle_kind("Send", TextButton::Kind::Bold);
    send->setTag(sendTag);
    send->addTarget_action_forControlEvents(self(this), "sendTapped", UIControlEventTouchUpInside);
    m_bar->addSubview(send);
    m_barLine = UIView::alloc()->init();
    m_barLine->setBackgroundColor(appearance::separatorColor());
    m_bar->addSubview(m_barLine);
    root->addSubview(m_bar);

    m_recipients = seat::ComposeHeader::alloc()->initWithName("To");
    m_subject = seat::ComposeHeader::alloc()->initWithName("Subject");
    root->addSubview(m_recipients);
    root->addSubview(m_subject);

    m_message = UIScrollView::alloc()->initWithFrame(CGRectZero);
    root->addSubview(m_message);
    setView(root);
}

void MFMailComposeViewController::viewDidAppear(bool animated) {
    UIViewController::viewDidAppear(animated);
    // What is missing first: whom it is for.
    const auto root = viewIfLoaded();
    if (const auto window = root ? root->window() : nullptr) window->setFocusedView(m_recipients->field());
}

void MFMailComposeViewController::viewDidLayoutSubviews() {
    UIViewController::viewDidLayoutSubviews();
    const auto root = viewIfLoaded();
    if (!root || !m_bar || !m_message) return;
    using seat::appearance::barHeight;
    using seat::appearance::hairline;
    using seat::appearance::sideMargin;
    const double width = root->bounds().size.width;
    m_bar->setFrame(CGRectMake(0, 0, width, barHeight));
    m_barLine->setFrame(CGRectMake(0, barHeight - hairline(), width, hairline()));
    for (const auto& item : m_bar->subviews()) {
        const CGSize size = item->sizeThatFits(CGSizeMake(width, barHeight));
        if (item->tag() == cancelTag)
            item->setFrame(CGRectMake(sideMargin, 0, size.width, barHeight));
        else if (item->tag() == sendTag)
            item->setFrame(CGRectMake(width - sideMargin - size.width, 0, size.width, barHeight));
        else if (item->tag() == titleTag)
            item->setFrame(CGRectMake(90, 0, std::max(0.0, width - 180), barHeight));
    }

    double y = barHeight;
    for (const auto& header : {m_recipients, m_subject}) {
        header->setFrame(CGRectMake(0, y, width, seat::ComposeHeader::height));
        y += seat::ComposeHeader::height;
    }
    m_message->setFrame(CGRectMake(0, y, width, std::max(0.0, root->bounds().size.height - y)));
    std::vector<seat::HTMLBlock> blocks;
    if (m_bodyIsHTML)
        blocks = seat::htmlBlocks(m_body);
    else if (!m_body.empty())
        blocks.push_back({seat::HTMLBlock::Kind::Paragraph, "", {{m_body, false}}});
    m_message->setContentSize(CGSizeMake(width, seat::layOutMessage(*m_message, blocks, width)));
}

bool MFMailComposeViewController::accessibilityPerformEscape() {
    cancelTapped();
    return true;
}

void MFMailComposeViewController::cancelTapped() { finish(MFMailComposeResult::Cancelled, nullptr); }

void MFMailComposeViewController::sendTapped() {
    const auto program = seat::defaultApplication(messageType);
    const std::string draft =
        program ? seat::saveMailDraft({m_recipients->field()->text(), m_subject->field()->text(), m_body}) : "";
    if (!draft.empty() && seat::openWithApplication(*program, draft))
        finish(MFMailComposeResult::Sent, nullptr);
    else
        finish(MFMailComposeResult::Failed, NSError::errorWithDescription("the mail program could not be started"));
}

void MFMailComposeViewController::finish(MFMailComposeResult result, const std::shared_ptr<NSError>& error) {
    if (std::exchange(m_finished, true)) return;
    const auto keep = self(this);
    if (const auto delegate = m_delegate.lock())
        delegate->mailComposeController_didFinishWithResult_error(*this, result, error);
    else
        dismissViewControllerAnimated_completion(true, nullptr);
}
