#include "platform/mail.h"

#include "desktop/mail/ComposeView.h"
#include "desktop/mail/html_blocks.h"
#include "desktop/mail/mail_program.h"
#include "desktop/mail/message_text.h"
#include "kit/foundation/translation.h"
#include "kit/uikit/UIWindow.h"
#include "platform/foundation/NSError.h"
#include "platform/log.h"
#include "platform/runtime/method.h"

#include <utility>

NS_CLASS_IMPLEMENTATION(MFMailComposeViewController, UIViewController,
                        method<&MFMailComposeViewController::cancelTapped>("cancelTapped"),
                        method<&MFMailComposeViewController::openTapped>("openTapped"))

struct MFMailComposeViewController::State {
    std::weak_ptr<MFMailComposeViewControllerDelegate> delegate;
    std::string body;
    bool bodyIsHTML = false;
    bool isFinished = false;
    std::shared_ptr<seat::ComposeView> view;

    std::vector<seat::HTMLBlock> blocks() const {
        if (bodyIsHTML) return seat::htmlBlocks(body);
        if (body.empty()) return {};
        return {{seat::HTMLBlock::Kind::Paragraph, "", {{body}}}};
    }
};

MFMailComposeViewController::MFMailComposeViewController() : m_state(std::make_unique<State>()) {}
MFMailComposeViewController::~MFMailComposeViewController() = default;

bool MFMailComposeViewController::canSendMail() { return seat::mailProgram().has_value(); }

std::shared_ptr<MFMailComposeViewController> MFMailComposeViewController::init() {
    if (!UIViewController::init()) return nullptr;
    setTitle(seat::translated("New Message"));
    return self(this);
}

void MFMailComposeViewController::setMailComposeDelegate(
    const std::shared_ptr<MFMailComposeViewControllerDelegate>& delegate) {
    m_state->delegate = delegate;
}

void MFMailComposeViewController::setMessageBody_isHTML(std::string body, bool isHTML) {
    m_state->body = std::move(body);
    m_state->bodyIsHTML = isHTML;
    if (m_state->view) m_state->view->setBlocks(m_state->blocks());
}

void MFMailComposeViewController::loadView() {
    m_state->view = seat::ComposeView::alloc()->initWithTitle(title());
    m_state->view->setBlocks(m_state->blocks());
    const auto& view = *m_state->view;
    view.cancelButton()->addTarget_action_forControlEvents(self(this), "cancelTapped", UIControlEventTouchUpInside);
    view.openButton()->addTarget_action_forControlEvents(self(this), "openTapped", UIControlEventTouchUpInside);
    setView(m_state->view);
}

void MFMailComposeViewController::viewDidAppear(bool animated) {
    UIViewController::viewDidAppear(animated);
    const auto window = m_state->view ? m_state->view->window() : nullptr;
    if (window) window->setFocusedView(m_state->view->openButton());
}

bool MFMailComposeViewController::accessibilityPerformEscape() {
    cancelTapped();
    return true;
}

void MFMailComposeViewController::cancelTapped() { finish(MFMailComposeResult::Cancelled); }

void MFMailComposeViewController::openTapped() {
    if (m_state->isFinished) return;
    const auto mail = seat::mailProgram();
    if (!mail) {
        NSLog("handing the message over: the desktop names no mail program any more");
        return handedOver(/*isStarted=*/false);
    }
    m_state->view->beginHandOver();
    const std::string html = m_state->bodyIsHTML ? m_state->body : seat::htmlOfText(m_state->body);
    seat::handOver(*mail, html, [weak = std::weak_ptr(self(this))](bool isStarted) {
        if (const auto composer = weak.lock()) composer->handedOver(isStarted);
    });
}

void MFMailComposeViewController::handedOver(bool isStarted) {
    if (isStarted) return finish(MFMailComposeResult::Sent);
    if (m_state->view) m_state->view->showHandOverFailed();
}

void MFMailComposeViewController::finish(MFMailComposeResult result) {
    if (std::exchange(m_state->isFinished, true)) return;
    const auto keep = self(this);
    if (const auto delegate = m_state->delegate.lock())
        delegate->mailComposeController_didFinishWithResult_error(*this, result, nullptr);
    else
        dismissViewControllerAnimated_completion(/*animated=*/true, nullptr);
}
