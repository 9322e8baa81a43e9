// A composer without a mail program: it cannot send.

#include "platform/mail.h"

#include "platform/foundation/NSError.h"
#include "platform/runtime/method.h"

#include <utility>

NS_CLASS_IMPLEMENTATION(MFMailComposeViewController, UIViewController,
                        method<&MFMailComposeViewController::cancelTapped>("cancelTapped"),
                        method<&MFMailComposeViewController::openTapped>("openTapped"))

struct MFMailComposeViewController::State {
    std::weak_ptr<MFMailComposeViewControllerDelegate> delegate;
    bool isFinished = false;
};

MFMailComposeViewController::MFMailComposeViewController() : m_state(std::make_unique<State>()) {}
MFMailComposeViewController::~MFMailComposeViewController() = default;

bool MFMailComposeViewController::canSendMail() { return false; }

std::shared_ptr<MFMailComposeViewController> MFMailComposeViewController::init() {
    if (!UIViewController::init()) return nullptr;
    setTitle("New Message");
    return self(this);
}

void MFMailComposeViewController::setMailComposeDelegate(
    const std::shared_ptr<MFMailComposeViewControllerDelegate>& delegate) {
    m_state->delegate = delegate;
}
void MFMailComposeViewController::setMessageBody_isHTML(std::string, bool) {}
void MFMailComposeViewController::loadView() { setView(UIView::alloc()->init()); }
void MFMailComposeViewController::viewDidAppear(bool animated) { UIViewController::viewDidAppear(animated); }
bool MFMailComposeViewController::accessibilityPerformEscape() {
    cancelTapped();
    return true;
}
void MFMailComposeViewController::cancelTapped() { finish(MFMailComposeResult::Cancelled); }
void MFMailComposeViewController::openTapped() { handedOver(false); }
void MFMailComposeViewController::handedOver(bool) {}
void MFMailComposeViewController::finish(MFMailComposeResult result) {
    if (std::exchange(m_state->isFinished, true)) return;
    const auto keep = self(this);
    if (const auto delegate = m_state->delegate.lock())
        delegate->mailComposeController_didFinishWithResult_error(*this, result, nullptr);
}
