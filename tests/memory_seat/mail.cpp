// A composer without a mail program: it cannot send.

#include "platform/mail.h"

#include "platform/foundation/NSError.h"
#include "platform/runtime/method.h"

#include <utility>

NS_CLASS_IMPLEMENTATION(MFMailComposeViewController, UIViewController,
                        method<&MFMailComposeViewController::cancelTapped>("cancelTapped"),
                        method<&MFMailComposeViewController::sendTapped>("sendTapped"))

MFMailComposeViewController::MFMailComposeViewController() = default;
MFMailComposeViewController::~MFMailComposeViewController() = default;

bool MFMailComposeViewController::canSendMail() { return false; }

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
}
void MFMailComposeViewController::loadView() { setView(UIView::alloc()->init()); }
void MFMailComposeViewController::viewDidAppear(bool animated) { UIViewController::viewDidAppear(animated); }
void MFMailComposeViewController::viewDidLayoutSubviews() { UIViewController::viewDidLayoutSubviews(); }
bool MFMailComposeViewController::accessibilityPerformEscape() {
    cancelTapped();
    return true;
}
void MFMailComposeViewController::cancelTapped() { finish(MFMailComposeResult::Cancelled, nullptr); }
void MFMailComposeViewController::sendTapped() {
    finish(MFMailComposeResult::Failed, NSError::errorWithDescription("there is no mail program"));
}
void MFMailComposeViewController::finish(MFMailComposeResult result, const std::shared_ptr<NSError>& error) {
    if (std::exchange(m_finished, true)) return;
    const auto keep = self(this);
    if (const auto delegate = m_delegate.lock())
        delegate->mailComposeController_didFinishWithResult_error(*this, result, error);
}
