#include "platform/mail.h"

#include "host/controllers/TextButton.h"
#include "host/mail/default_application.h"
#include "host/mail/html_blocks.h"
#include "host/mail/mail_draft.h"
#include "platform/foundation/NSError.h"
#include "platform/runtime/method.h"
#include "platform/uikit/UILabel.h"

#include <algorithm>
#include <utility>

NS_CLASS_IMPLEMENTATION(MFMailComposeViewController, UIViewController,
                        method<&MFMailComposeViewController::cancelTapped>("cancelTapped"),
                        method<&MFMailComposeViewController::sendTapped>("sendTapped"))

namespace {

constexpr double barHeight = 44;
constexpr double fieldHeight = 44;
constexpr double margin = 16;
constexpr double readableWidth = 600;
constexpr int cancelTag = 1;
constexpr int sendTag = 2;
constexpr int titleTag = 3;

std::optional<host::DefaultApplication> mailProgram() {
    if (auto program = host::defaultApplication("message/rfc822")) return program;
    return std::nullopt;
}

std::shared_ptr<UILabel> label(std::string text, const std::shared_ptr<UIFont>& font,
                               const std::shared_ptr<UIColor>& color) {
    const auto label = UILabel::alloc()->init();
    label->setFont(font);
    label->setTextColor(color);
    label->setText(std::move(text));
    return label;
}

std::shared_ptr<UIColor> secondaryColor() { return UIColor::colorWithWhite_alpha(0.45, 1); }
std::shared_ptr<UIColor> linkColor() { return UIColor::colorWithRed_green_blue_alpha(0, 0.48, 1, 1); }

std::shared_ptr<UIView> hairline() {
    const auto line = UIView::alloc()->init();
    line->setBackgroundColor(UIColor::colorWithWhite_alpha(0.78, 1));
    return line;
}

// A row at the head of the message: what it is, and that it is empty.
std::shared_ptr<UIView> emptyField(const char* name) {
    const auto field = UIView::alloc()->init();
    const auto title = label(name, UIFont::systemFontOfSize(15), secondaryColor());
    title->sizeToFit();
    const double width = title->frame().size.width;
    title->setFrame(CGRectMake(margin, 0, width, fieldHeight));
    field->addSubview(title);
    const auto hint =
        label("you add it in your mail program", UIFont::systemFontOfSize(15), UIColor::colorWithWhite_alpha(0.7, 1));
    hint->setFrame(CGRectMake(margin + width + 8, 0, 280, fieldHeight));
    field->addSubview(hint);
    return field;
}

std::shared_ptr<UILabel> blockLabel(const host::HTMLBlock& block) {
    using Kind = host::HTMLBlock::Kind;
    const auto font = block.kind == Kind::Heading      ? UIFont::boldSystemFontOfSize(22)
                      : block.kind == Kind::Subheading ? UIFont::boldSystemFontOfSize(17)
                                                       : UIFont::systemFontOfSize(15);
    const auto text = NSMutableAttributedString::alloc()->initWithString_attributes("", {});
    for (const auto& run : block.runs)
        text->appendAttributedString(*NSMutableAttributedString::alloc()->initWithString_attributes(
            run.text, {font, run.isLink ? linkColor() : UIColor::blackColor()}));
    const auto result = UILabel::alloc()->init();
    result->setFont(font);
    result->setAttributedText(text);
    result->setNumberOfLines(0);
    return result;
}

// Lays the blocks out under each other and gives the height they take.
double layOutBlocks(UIView& message, const std::vector<host::HTMLBlock>& blocks, double top, double width) {
    const double left = std::max(margin, (width - readableWidth) / 2);
    double y = top;
    for (const auto& block : blocks) {
        const bool isItem = block.kind == host::HTMLBlock::Kind::ListItem;
        const double indent = isItem ? 28 : 0;
        const double available = std::max(1.0, width - 2 * left - indent);
        y += isItem ? 4 : 14;
        const auto text = blockLabel(block);
        const CGSize size = text->sizeThatFits(CGSizeMake(available, 1e6));
        text->setFrame(CGRectMake(left + indent, y, available, size.height));
        if (isItem) {
            const auto marker = label(block.marker, UIFont::systemFontOfSize(15), secondaryColor());
            const CGSize markerSize = marker->sizeThatFits(CGSizeMake(indent, 1e6));
            marker->setTextAlignment(NSTextAlignmentRight);
            marker->setFrame(CGRectMake(left, y, indent - 7, markerSize.height));
            message.addSubview(marker);
        }
        message.addSubview(text);
        y += size.height;
    }
    return y + margin;
}

} // namespace

MFMailComposeViewController::MFMailComposeViewController() = default;
MFMailComposeViewController::~MFMailComposeViewController() = default;

bool MFMailComposeViewController::canSendMail() { return mailProgram().has_value(); }

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
    using host::TextButton;
    const auto root = UIView::alloc()->initWithFrame(CGRectMake(0, 0, 375, 667));
    root->setBackgroundColor(UIColor::whiteColor());

    m_bar = UIView::alloc()->init();
    m_bar->setBackgroundColor(UIColor::colorWithWhite_alpha(0.97, 1));
    const auto cancel = TextButton::alloc()->initWithTitle_kind("Cancel", TextButton::Kind::Plain);
    cancel->setTag(cancelTag);
    cancel->addTarget_action_forControlEvents(self(this), "cancelTapped", UIControlEventTouchUpInside);
    m_bar->addSubview(cancel);
    const auto heading = label(title(), UIFont::boldSystemFontOfSize(17), UIColor::blackColor());
    heading->setTag(titleTag);
    heading->setTextAlignment(NSTextAlignmentCenter);
    m_bar->addSubview(heading);
    const auto send = TextButton::alloc()->initWithTitle_kind("Send", TextButton::Kind::Bold);
    send->setTag(sendTag);
    send->addTarget_action_forControlEvents(self(this), "sendTapped", UIControlEventTouchUpInside);
    m_bar->addSubview(send);
    root->addSubview(m_bar);

    m_message = UIScrollView::alloc()->initWithFrame(CGRectZero);
    root->addSubview(m_message);
    setView(root);
}

void MFMailComposeViewController::viewDidLayoutSubviews() {
    UIViewController::viewDidLayoutSubviews();
    const auto root = viewIfLoaded();
    if (!root || !m_bar || !m_message) return;
    const double width = root->bounds().size.width;
    m_bar->setFrame(CGRectMake(0, 0, width, barHeight));
    for (const auto& item : m_bar->subviews()) {
        const CGSize size = item->sizeThatFits(CGSizeMake(width, barHeight));
        if (item->tag() == cancelTag)
            item->setFrame(CGRectMake(margin, 0, size.width, barHeight));
        else if (item->tag() == sendTag)
            item->setFrame(CGRectMake(width - margin - size.width, 0, size.width, barHeight));
        else if (item->tag() == titleTag)
            item->setFrame(CGRectMake(90, 0, std::max(0.0, width - 180), barHeight));
    }

    m_message->setFrame(CGRectMake(0, barHeight, width, std::max(0.0, root->bounds().size.height - barHeight)));
    const auto former = m_message->subviews();
    for (const auto& view : former) view->removeFromSuperview();
    double y = 0;
    for (const char* name : {"To:", "Subject:"}) {
        const auto field = emptyField(name);
        field->setFrame(CGRectMake(0, y, width, fieldHeight));
        m_message->addSubview(field);
        y += fieldHeight;
        const auto line = hairline();
        line->setFrame(CGRectMake(margin, y - 0.5, std::max(0.0, width - margin), 0.5));
        m_message->addSubview(line);
    }
    std::vector<host::HTMLBlock> blocks;
    if (m_bodyIsHTML)
        blocks = host::htmlBlocks(m_body);
    else if (!m_body.empty())
        blocks.push_back({host::HTMLBlock::Kind::Paragraph, "", {{m_body, false}}});
    m_message->setContentSize(CGSizeMake(width, layOutBlocks(*m_message, blocks, y, width)));
}

void MFMailComposeViewController::cancelTapped() { finish(MFMailComposeResult::Cancelled, nullptr); }

void MFMailComposeViewController::sendTapped() {
    const auto program = mailProgram();
    const std::string draft = program ? host::saveMailDraft(m_body) : "";
    if (!draft.empty() && host::openWithApplication(*program, draft))
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
