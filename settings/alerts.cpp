#include "settings/alerts.h"

#include "platform/uikit/UIAlertView.h"

#include <utility>

void showAlert(std::string title, std::string message) {
    const auto alert = UIAlertView::alloc()->initWithTitle_message_delegate_cancelButtonTitle_otherButtonTitles(
        std::move(title), std::move(message), nullptr, "Dismiss", {});
    if (alert) alert->show();
}
