#pragma once

#include "platform/uikit/UIViewController.h"

#include <string>

class MFMailComposeViewController;
class NSError;

// The numbers are the phone's; this seat reports Cancelled and Sent.
enum class MFMailComposeResult { Cancelled = 0, Saved = 1, Sent = 2, Failed = 3 };

// Who hears how the screen was left. Main thread.
class MFMailComposeViewControllerDelegate {
public:
    virtual ~MFMailComposeViewControllerDelegate() = default;
    // Once a screen. `error` is nil unless the result is Failed. Dismiss the screen here.
    virtual void mailComposeController_didFinishWithResult_error(MFMailComposeViewController& composer,
                                                                 MFMailComposeResult result,
                                                                 const std::shared_ptr<NSError>& error) = 0;
};

// A screen with a new message: the body as it will look, Cancel and Open. Open hands the message, unsent and without
// recipient and subject, to the user's mail program, where the user writes both. A program that cannot be started is
// reported on the screen, which stays. The delegate dismisses the screen.
class MFMailComposeViewController final : public UIViewController {
    NS_CLASS(MFMailComposeViewController)
public:
    ~MFMailComposeViewController() override;

    // Whether the desktop has a program that takes messages; asked afresh each time.
    static bool canSendMail();

    // Without a message; never nil.
    std::shared_ptr<MFMailComposeViewController> init();

    // Weak; hears once how the screen was left: cancelled, or sent once the mail program was started. Without one the
    // screen dismisses itself.
    void setMailComposeDelegate(const std::shared_ptr<MFMailComposeViewControllerDelegate>& delegate);
    // UTF-8; set before the screen is shown.
    void setMessageBody_isHTML(std::string body, bool isHTML);

    void viewDidAppear(bool animated) override;

private:
    MFMailComposeViewController();
    void loadView() override;
    // As Cancel does.
    bool accessibilityPerformEscape() override;
    void cancelTapped();
    void openTapped();
    void handedOver(bool isStarted);
    void finish(MFMailComposeResult result);

    struct State;
    std::unique_ptr<State> m_state;
};
