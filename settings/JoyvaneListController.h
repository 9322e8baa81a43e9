#pragma once

#include "daemonlink/JVNControllerType.h"
#include "ledcolour/JVNColorPickerController.h"
#include "platform/mail.h"
#include "platform/messaging_center.h"
#include "platform/runtime/AtomicReference.h"
#include "platform/settings_framework/PSListController.h"
#include "platform/task.h"
#include "platform/uikit/UIAlertView.h"
#include "platform/uikit/UIProgressHUD.h"
#include "settings/RunningExchanges.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>

// The add-on's page: the bundle's principal class. Rows of the resource "Joyvane", and rows of its own that come and go
// with the controller type, the connection mode, the ambient colour and the connection state. Main thread only, but for
// what says otherwise.
class JoyvaneListController : public PSListController,
                              public JVNColorPickerControllerDelegate,
                              public UIAlertViewDelegate,
                              public MFMailComposeViewControllerDelegate {
    NS_CLASS(JoyvaneListController)
public:
    ~JoyvaneListController() override;

    std::shared_ptr<JoyvaneListController> init();
    bool respondsToSelector(SEL selector) const override { return NSObject::respondsToSelector(selector); }

    // What the page believes about the hand-connected controller. Written by the task of an exchange.
    bool controllerConnected() const { return m_controllerConnected; }
    void setControllerConnected(bool connected) { m_controllerConnected = connected; }
    const std::shared_ptr<NSTask>& discoveryTask() const { return m_discoveryTask; }
    void setDiscoveryTask(std::shared_ptr<NSTask> task) { m_discoveryTask = std::move(task); }
    // nil while the page is not shown.
    const std::shared_ptr<CPDistributedMessagingCenter>& discoveryMessagingCenter() const { return m_messagingCenter; }
    void setDiscoveryMessagingCenter(std::shared_ptr<CPDistributedMessagingCenter> center) {
        m_messagingCenter = std::move(center);
    }
    const std::shared_ptr<UIProgressHUD>& hud() const { return m_hud; }
    const std::shared_ptr<PSSpecifier>& ds4Group() const { return m_ds4Group; }
    const std::shared_ptr<PSSpecifier>& ds4AmbientColor() const { return m_ds4AmbientColor; }
    const std::shared_ptr<PSSpecifier>& ds4ColorChooser() const { return m_ds4ColorChooser; }
    const std::shared_ptr<PSSpecifier>& connectSpecifier() const { return m_connectSpecifier; }

    void viewDidLoad() override;
    void viewWillAppear(bool animated) override;
    void viewDidAppear(bool animated) override;
    void viewWillDisappear(bool animated) override;

    // Settings. The two numbers are read from the store; 0 without a row or a value.
    long currentControllerType(); // any thread
    long connectionType();
    void setPreferenceValue_specifier(const id& value, const std::shared_ptr<PSSpecifier>& specifier) override;

    // Rows.
    const PSSpecifierList& specifiers() override;
    void reloadSpecifiers() override;
    std::shared_ptr<PSSpecifier> pairSpecifier();
    void fixPairLabel(long controllerType);
    void setHasDS4Specifiers(bool show);
    void setHasConnectCell(bool show);
    void setHasColorChooserSpecifier_addIfMissing(bool show, bool addIfMissing);
    void setHasForceExtendedCell(bool show);

    // LED colour.
    void presentColorChooser(const std::shared_ptr<PSSpecifier>& specifier);
    void colorPicker_didPickColor(JVNColorPickerController& picker, const std::shared_ptr<UIColor>& color) override;
    // Sends the stored colour on the connection, or with -1 on one of its own. Any thread.
    void updateDS4ColorWithSocket(int descriptor);

    // Connecting: the exchange runs on a worker; the row is disabled until it has ended.
    void queryControllerConnected();
    void connectController(const std::shared_ptr<PSSpecifier>& specifier);

    // Pairing, and the daemons.
    void pairController();
    void pairPS4Controller();
    void killDiscoveryTask();
    void handlePairingMessage_userInfo(const std::string& message, const std::shared_ptr<NSDictionary>& userInfo);
    void restartDaemons();

    // Instructions.
    void emailInstructions();
    void mailComposeController_didFinishWithResult_error(MFMailComposeViewController& composer,
                                                         MFMailComposeResult result,
                                                         const std::shared_ptr<NSError>& error) override;
    void alertView_didDismissWithButtonIndex(UIAlertView& alert, long buttonIndex) override;

protected:
    JoyvaneListController();

private:
    std::shared_ptr<PSSpecifier> settingSpecifier(const char* title, PSCellType cell, const id& defaultValue,
                                                  const char* key, const char* identifier);
    std::shared_ptr<PSSpecifier> switchSpecifier(const char* title, const char* key, const char* identifier);
    std::string storedLEDColor(const std::shared_ptr<PSSpecifier>& specifier);
    void showStoredColorInChooser();
    void interruptDiscoveryTask();
    void startDiscoveryServer();
    void stopDiscoveryServer();
    void reactToDiscovery(std::int64_t state, long controllerType);
    void endDiscovery(const std::string& message);

    std::atomic<bool> m_controllerConnected = false;
    std::shared_ptr<RunningExchanges> m_runningExchanges = std::make_shared<RunningExchanges>();
    // Tasks read the type through its row while the list may be rebuilt on the main thread.
    AtomicReference<PSSpecifier> m_controllerTypeRow;
    std::shared_ptr<NSTask> m_discoveryTask;
    std::shared_ptr<CPDistributedMessagingCenter> m_messagingCenter;
    std::shared_ptr<UIProgressHUD> m_hud;
    std::shared_ptr<PSSpecifier> m_ds4Group;
    std::shared_ptr<PSSpecifier> m_ds4AmbientColor;
    std::shared_ptr<PSSpecifier> m_ds4ColorChooser;
    std::shared_ptr<PSSpecifier> m_connectSpecifier;
};
