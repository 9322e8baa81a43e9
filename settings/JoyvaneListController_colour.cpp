// The DualShock 4's LED colour: shown in its row, picked on its screen, sent to the daemon.

#include "settings/JoyvaneListController.h"

#include "daemonlink/ControlConnection.h"
#include "daemonlink/exchanges.h"
#include "ledcolour/hex_colour.h"
#include "platform/uikit/UINavigationController.h"
#include "settings/daemon_failure.h"

// What is stored but is no text holds no digits.
std::string JoyvaneListController::storedLEDColor(const std::shared_ptr<PSSpecifier>& specifier) {
    const id value = readPreferenceValue(specifier);
    if (!value) return JVNDefaultLEDColor;
    return value.string() ? *value.string() : std::string();
}

void JoyvaneListController::showStoredColorInChooser() {
    if (!m_ds4ColorChooser) return;
    const auto cell = m_ds4ColorChooser->propertyForKey("cellObject").object<PSTableCell>();
    if (cell) cell->setValue(readPreferenceValue(m_ds4ColorChooser));
}

void JoyvaneListController::presentColorChooser(const std::shared_ptr<PSSpecifier>& specifier) {
    const auto color = JVNColorForHexString(storedLEDColor(specifier));
    const auto screen = JVNColorPickerController::alloc()->initWithColor(color);
    if (!screen) return;
    screen->setDelegate(this);
    if (const auto navigation = navigationController()) navigation->pushViewController_animated(screen, true);
}

void JoyvaneListController::colorPicker_didPickColor(JVNColorPickerController&, const std::shared_ptr<UIColor>& color) {
    setPreferenceValue_specifier(JVNStringColorForUIColor(color), m_ds4ColorChooser);
    reloadSpecifier(m_ds4ColorChooser);
    updateDS4ColorWithSocket(-1);
}

void JoyvaneListController::updateDS4ColorWithSocket(int descriptor) {
    if (currentControllerType() != JVNControllerTypeDualShock4) return;
    ControlConnection own;
    if (descriptor == -1) {
        own = ControlConnection::open();
        if (!own) {
            announceDaemonFailure();
            return;
        }
        descriptor = own.descriptor();
    }
    const JVNColorPixel color = JVNColorPixelForHexString(storedLEDColor(m_ds4ColorChooser));
    daemonlink::setLEDColor(descriptor, color.red, color.green, color.blue);
}
