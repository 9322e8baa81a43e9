#include "settings/JoyvaneListController.h"

#include "ledcolour/hex_colour.h"
#include "platform/dispatch.h"
#include "platform/foundation/NSNotificationCenter.h"
#include "platform/runtime/method.h"
#include "settings/alerts.h"
#include "settings/preferences.h"

// What the Settings application, a resource's rows, the notification centre and the message server call by name.
NS_CLASS_IMPLEMENTATION(JoyvaneListController, PSListController, method<&JoyvaneListController::init>("init"),
                        method<&JoyvaneListController::setPreferenceValue_specifier>("setPreferenceValue:specifier:"),
                        method<&JoyvaneListController::presentColorChooser>("presentColorChooser:"),
                        method<&JoyvaneListController::connectController>("connectController:"),
                        method<&JoyvaneListController::pairController>("pairController"),
                        method<&JoyvaneListController::killDiscoveryTask>("killDiscoveryTask"),
                        method<&JoyvaneListController::handlePairingMessage_userInfo>("handlePairingMessage:userInfo:"),
                        method<&JoyvaneListController::restartDaemons>("restartDaemons"),
                        method<&JoyvaneListController::emailInstructions>("emailInstructions"),
                        {"colorPicker:didPickColor:",
                         [](NSObject& self, SEL, std::span<const id> arguments) {
                             const auto picker =
                                 arguments.empty() ? nullptr : arguments[0].object<JVNColorPickerController>();
                             if (picker && arguments.size() > 1)
                                 static_cast<JoyvaneListController&>(self).colorPicker_didPickColor(
                                     *picker, arguments[1].object<UIColor>());
                             return id();
                         },
                         "v@:@@"})

JoyvaneListController::JoyvaneListController() = default;

JoyvaneListController::~JoyvaneListController() {
    interruptDiscoveryTask();
    m_discoveryTask = nullptr;
    m_hud = nullptr;
    NSNotificationCenter::defaultCenter()->removeObserver(this);
}

std::shared_ptr<JoyvaneListController> JoyvaneListController::init() {
    if (!PSListController::init()) return nullptr;
    m_hud = UIProgressHUD::alloc()->init();
    NSNotificationCenter::defaultCenter()->addObserver_selector_name_object(
        self(this), "killDiscoveryTask", UIApplicationDidEnterBackgroundNotification, nullptr);

    m_ds4Group = PSSpecifier::preferenceSpecifierNamed_target_set_get_detail_cell_edit(
        "DualShock 4", self(this), nullptr, nullptr, nullptr, PSCellType::Group, nullptr);
    m_ds4Group->setProperty_forKey(preferences::ds4GroupID, "id");

    m_ds4AmbientColor = switchSpecifier("Ambient LED Color", preferences::ambientColorKey, preferences::ambientColorID);

    m_ds4ColorChooser = settingSpecifier("Choose LED Color", PSCellType::Button, JVNDefaultLEDColor,
                                         preferences::ledColorKey, preferences::ledColorID);
    m_ds4ColorChooser->setProperty_forKey(objc_getClass("JVNColorChooserCell"), "cellClass");
    m_ds4ColorChooser->setButtonAction("presentColorChooser:");

    m_connectSpecifier = PSSpecifier::preferenceSpecifierNamed_target_set_get_detail_cell_edit(
        "Connect Controller", self(this), nullptr, nullptr, nullptr, PSCellType::Button, nullptr);
    m_connectSpecifier->setProperty_forKey(preferences::connectID, "id");
    m_connectSpecifier->setButtonAction("connectController:");
    return self(this);
}

void JoyvaneListController::viewDidLoad() {
    PSListController::viewDidLoad();
    reloadSpecifiers();
}

void JoyvaneListController::viewWillAppear(bool animated) {
    PSListController::viewWillAppear(animated);
    queryControllerConnected();
    reloadSpecifiers();
}

void JoyvaneListController::viewDidAppear(bool animated) {
    PSListController::viewDidAppear(animated);
    startDiscoveryServer();
}

void JoyvaneListController::viewWillDisappear(bool animated) {
    PSListController::viewWillDisappear(animated);
    stopDiscoveryServer();
    interruptDiscoveryTask();
}

// On the main thread the first look may come before the list is loaded; a worker's never does.
long JoyvaneListController::currentControllerType() {
    if (dispatch_is_main_thread()) specifiers();
    return readPreferenceValue(m_controllerTypeRow.load()).integerValue();
}

long JoyvaneListController::connectionType() {
    return readPreferenceValue(specifierForID(preferences::connectionModeID)).integerValue();
}

void JoyvaneListController::setPreferenceValue_specifier(const id& value,
                                                         const std::shared_ptr<PSSpecifier>& specifier) {
    PSListController::setPreferenceValue_specifier(value, specifier);
    if (!specifier) return;
    const std::string identifier = specifier->identifier();
    if (identifier == preferences::forceExtendedID && value.boolValue())
        showAlert("Important!",
                  "Your controller is missing some buttons the extended gamepad requires. By forcing this profile you "
                  "may have poor gaming experience. Please turn this off unless you know what this means.");
    else if (identifier == preferences::ambientColorID)
        setHasColorChooserSpecifier_addIfMissing(!value.boolValue(), /*addIfMissing=*/true);
}
