#pragma once

#include "platform/uikit/UIScrollView.h"
#include "platform/uikit/UIViewController.h"

#include <string>

class MFMailComposeViewController;
class NSError;

namespace seat {
class ComposeHeader;
}

enum class MFMailComposeResult { Cancelled = 0, Saved = 1, Sent = 2, Failed = 3 };

class MFMailComposeViewControllerDelegate {
public:
    virtual ~MFMailComposeViewControllerDelegate() = default;
    virtual void mailComposeController_didFinishWithResult_error(MFMailComposeViewController& composer,
                                                                 MFMailComposeResult result,
                                                                 const std::shared_ptr<NSError>& error) = 0;
};

// A screen with a new message: recipients and subject, both empty and the user's to fill in, the body as it will look,
// Cancel and Send. Sending hands the message, unsent, to the user's mail program. The delegate dismisses the screen.
class MFMailComposeViewController final : public UIViewController {
    NS_CLASS(MFMailComposeViewController)
public:
    ~MFMailComposeViewController() override;

    // Whether the desktop has a program that takes messages.
    static bool canSendMail();

    std::shared_ptr<MFMailComposeViewController> init();

    // Weak; hears once how the screen was left.
    void setMailComposeDelegate(const std::shared_ptr<MFMailComposeViewControllerDelegate>& delegate);
    void setMessageBody_isHTML(std::string body, bool isHTML);

    void loadView() override;
    void viewDidAppear(bool animated) override;
    void viewDidLayoutSubviews() override;
    // As Cancel does.
    bool accessibilityPerformEscape() override;

private:
    MFMailComposeViewController();
    void cancelTapped();
    void sendTapped();
    void finish(MFMailComposeResult result, const std::shared_ptr<NSError>& error);

    std::weak_ptr<MFMailComposeViewControllerDelegate> m_delegate;
    std::string m_body;
    bool m_bodyIsHTML = false;
    bool m_finished = false;
    std::shared_ptr<UIView> m_bar;
    std::shared_ptr<UIView> m_barLine;
    std::shared_ptr<seat::ComposeHeader> m_recipients;
    std::shared_ptr<seat::ComposeHeader> m_subject;
    std::shared_ptr<UIScrollView> m_message;
};
