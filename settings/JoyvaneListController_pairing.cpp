// Pairing: the discovery tool as a child process, its progress over the message server, the overlay and the alerts.

#include "settings/JoyvaneListController.h"

#include "daemonlink/ControlConnection.h"
#include "daemonlink/exchanges.h"
#include "keymap/JVNKeymapViewController.h"
#include "platform/dispatch.h"
#include "platform/uikit/UINavigationController.h"
#include "settings/alerts.h"
#include "settings/discovery_states.h"
#include "settings/preferences.h"

#include <cmath>

namespace {

constexpr const char* discoveryTool = "/usr/bin/jvndiscovery";
constexpr const char* messageServerName = "com.quorrel.jvn.bootstrap";
constexpr const char* discoveryUpdateMessage = "JVNDiscoveryUpdate";
constexpr const char* discoveryStateKey = "JVNDiscoveryState";

// What is no whole number reads as absent: nobody may be told of a success that was not reported.
std::int64_t discoveryState(const std::shared_ptr<NSDictionary>& userInfo) {
    const id value = userInfo ? userInfo->objectForKey(discoveryStateKey) : id();
    const auto* const number = value.number();
    if (!number) return 0;
    const double real = number->doubleValue();
    return std::isfinite(real) && std::trunc(real) == real ? number->integerValue() : 0;
}

} // namespace

void JoyvaneListController::pairController() {
    switch (currentControllerType()) {
    case JVNControllerTypeKeyboard: {
        const auto editor = JVNKeymapViewController::alloc()->initWithKeymapPath(preferences::file);
        if (!editor) return;
        if (const auto navigation = navigationController()) navigation->pushViewController_animated(editor, true);
        if (const auto table = editor->tableView()) table->reloadData();
        return;
    }
    case JVNControllerTypePS3:
        emailInstructions();
        return;
    default:
        pairPS4Controller();
        return;
    }
}

void JoyvaneListController::pairPS4Controller() {
    killDiscoveryTask();
    if (m_hud) {
        m_hud->showInView(view());
        m_hud->setText("Activating Bluetooth...\nIf this takes too long, activate BTstack in its preferences.");
    }
    setDiscoveryTask(NSTask::launchedTaskWithLaunchPath_arguments(discoveryTool, {}));
}

void JoyvaneListController::killDiscoveryTask() {
    interruptDiscoveryTask();
    if (m_hud) m_hud->hide();
}

void JoyvaneListController::interruptDiscoveryTask() {
    if (m_discoveryTask && m_discoveryTask->processIdentifier() != 0)
        platform::kill(m_discoveryTask->processIdentifier(), SIGINT_NUMBER);
}

void JoyvaneListController::startDiscoveryServer() {
    const auto center = CPDistributedMessagingCenter::centerNamed(messageServerName);
    rocketbootstrap_distributedmessagingcenter_apply(center);
    if (center) {
        center->runServerOnCurrentThread();
        center->registerForMessageName_target_selector(discoveryUpdateMessage, self(this),
                                                       "handlePairingMessage:userInfo:");
    }
    setDiscoveryMessagingCenter(center);
}

void JoyvaneListController::stopDiscoveryServer() {
    if (m_messagingCenter) {
        m_messagingCenter->unregisterForMessageName(discoveryUpdateMessage);
        m_messagingCenter->stopServer();
    }
    setDiscoveryMessagingCenter(nullptr);
}

// The reaction is queued although this is the main thread already: it must not run inside the server's own dispatch.
// State and type are those of the message's arrival.
void JoyvaneListController::handlePairingMessage_userInfo(const std::string&,
                                                          const std::shared_ptr<NSDictionary>& userInfo) {
    const std::int64_t state = discoveryState(userInfo);
    const long controllerType = currentControllerType();
    dispatch_async(dispatch_get_main_queue(),
                   [page = self(this), state, controllerType] { page->reactToDiscovery(state, controllerType); });
}

void JoyvaneListController::reactToDiscovery(std::int64_t state, long controllerType) {
    switch (state) {
    case JVNDiscoveryStateSearching:
        if (const char* text = searchingText(controllerType); text && m_hud) m_hud->setText(text);
        break;
    case JVNDiscoveryStatePaired:
        endDiscovery(pairedMessage(controllerType));
        break;
    case JVNDiscoveryStateBluetoothInactive:
        endDiscovery("BTstack was not activated! Please try going to BTstack preferences and activate it.");
        break;
    case JVNDiscoveryStateStarting:
        if (m_hud) m_hud->setText("Starting Search...\nPrepare your controller.");
        break;
    default:
        break;
    }
}

void JoyvaneListController::endDiscovery(const std::string& message) {
    killDiscoveryTask();
    showAlert("Joyvane", message);
    if (m_hud) m_hud->hide();
}

void JoyvaneListController::restartDaemons() {
    const auto connection = ControlConnection::open();
    if (!connection) {
        showAlert("Important!", "A critical error has occurred! Please reboot your device in order to continue using "
                                "Joyvane.");
        return;
    }
    daemonlink::restartDaemons(connection.descriptor());
}
