// The pairing instructions: as a message where the desktop takes mail, else in the browser.

#include "settings/JoyvaneListController.h"

#include "platform/uikit/UIApplication.h"
#include "platform/uikit/UINavigationController.h"
#include "settings/pairing_instructions.h"

void JoyvaneListController::emailInstructions() {
    if (MFMailComposeViewController::canSendMail()) {
        const auto composer = MFMailComposeViewController::alloc()->init();
        if (!composer) return;
        composer->setMailComposeDelegate(self(this));
        composer->setMessageBody_isHTML(pairingInstructionsHTML, /*isHTML=*/true);
        if (const auto navigation = navigationController())
            navigation->presentViewController_animated_completion(composer, true, nullptr);
        return;
    }
    const auto alert = UIAlertView::alloc()->initWithTitle_message_delegate_cancelButtonTitle_otherButtonTitles(
        "Your E-mail account is not configured", "You are taken to a browser with pairing instructions.", self(this),
        "Dismiss", {});
    if (alert) alert->show();
}

// This page is the delegate of no other alert.
void JoyvaneListController::alertView_didDismissWithButtonIndex(UIAlertView&, long) {
    UIApplication::sharedApplication()->openURL(pairingInstructionsURL);
}

void JoyvaneListController::mailComposeController_didFinishWithResult_error(MFMailComposeViewController& composer,
                                                                            MFMailComposeResult,
                                                                            const std::shared_ptr<NSError>&) {
    composer.dismissViewControllerAnimated_completion(true, nullptr);
}
