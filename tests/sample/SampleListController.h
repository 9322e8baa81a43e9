#pragma once

#include "platform/settings_framework/PSListController.h"
#include "platform/uikit/UIAlertView.h"
#include "platform/uikit/UIProgressHUD.h"

#include <memory>
#include <string>

// The page that proves the seat: every kind of row, an alert, a progress panel, rows that come and go, a pushed screen.
class SampleListController final : public PSListController, public UIAlertViewDelegate {
    NS_CLASS(SampleListController)
public:
    std::shared_ptr<SampleListController> init();
    bool respondsToSelector(SEL selector) const override { return NSObject::respondsToSelector(selector); }

    const PSSpecifierList& specifiers() override;
    // What the page was told so far, in order, separated by spaces. For tests, which know the page by the runtime only.
    std::string journal() const { return m_journal; }

    void showAlert();
    void showProgress();
    void showControls();
    void toggleExtraRow();

    void setPreferenceValue_specifier(const id& value, const std::shared_ptr<PSSpecifier>& specifier) override;
    void viewDidLoad() override;
    void viewWillAppear(bool animated) override;
    void viewDidAppear(bool animated) override;
    void viewWillDisappear(bool animated) override;
    void viewDidDisappear(bool animated) override;
    void alertView_didDismissWithButtonIndex(UIAlertView& alert, long buttonIndex) override;

private:
    void applicationDidEnterBackground();
    void note(const std::string& event);

    std::string m_journal;
    int m_timesInBackground = 0;
    std::shared_ptr<UIProgressHUD> m_progress;
};
