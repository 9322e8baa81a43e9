// Which rows the page has, and where they stand.

#include "settings/JoyvaneListController.h"

#include "settings/preferences.h"

namespace {

const char* pairingRowTitle(long controllerType) {
    switch (controllerType) {
    case JVNControllerTypePS3:
        return "E-mail Pairing Instructions";
    case JVNControllerTypeKeyboard:
        return "Configure Keymap";
    default:
        return "Pair Controller";
    }
}

} // namespace

// A row whose value the page itself reads and writes.
std::shared_ptr<PSSpecifier> JoyvaneListController::settingSpecifier(const char* title, PSCellType cell,
                                                                     const id& defaultValue, const char* key,
                                                                     const char* identifier) {
    const auto row = PSSpecifier::preferenceSpecifierNamed_target_set_get_detail_cell_edit(
        title, self(this), "setPreferenceValue:specifier:", "readPreferenceValue:", nullptr, cell, nullptr);
    row->setProperty_forKey(defaultValue, "default");
    row->setProperty_forKey(preferences::domain, "defaults");
    row->setProperty_forKey(preferences::changedNotification, "PostNotification");
    row->setProperty_forKey(key, "key");
    row->setProperty_forKey(identifier, "id");
    return row;
}

std::shared_ptr<PSSpecifier> JoyvaneListController::switchSpecifier(const char* title, const char* key,
                                                                    const char* identifier) {
    return settingSpecifier(title, PSCellType::Switch, NSNumber::numberWithBool(false), key, identifier);
}

const PSSpecifierList& JoyvaneListController::specifiers() {
    if (!_specifiers) {
        _specifiers = loadSpecifiersFromPlistName_target("Joyvane", self(this));
        m_controllerTypeRow = specifierForID(preferences::controllerTypeID);
    }
    return *_specifiers;
}

void JoyvaneListController::reloadSpecifiers() {
    PSListController::reloadSpecifiers();
    const long controllerType = currentControllerType();
    if (m_connectSpecifier)
        m_connectSpecifier->setName(controllerConnected() ? "Disconnect Controller" : "Connect Controller");
    fixPairLabel(controllerType);
}

std::shared_ptr<PSSpecifier> JoyvaneListController::pairSpecifier() { return specifierForID(preferences::pairLabelID); }

void JoyvaneListController::fixPairLabel(long controllerType) {
    const auto pair = pairSpecifier();
    if (pair) pair->setName(pairingRowTitle(controllerType));
    setHasDS4Specifiers(controllerType == JVNControllerTypeDualShock4);
    reloadSpecifier(pair);
    setHasForceExtendedCell(controllerType == JVNControllerTypeHoldXHome3 ||
                            controllerType == JVNControllerTypeKeyboard);
    // The stored type counts here, not the argument.
    setHasConnectCell(connectionType() == JVNConnectionModeByHand &&
                      currentControllerType() != JVNControllerTypeKeyboard);
}

void JoyvaneListController::setHasDS4Specifiers(bool show) {
    if (!show) {
        // The chooser row stays where it is; it goes with the next rebuild of the list or with the ambient switch.
        removeSpecifierID_animated(preferences::ds4GroupID);
        removeSpecifierID_animated(preferences::ambientColorID);
        return;
    }
    if (specifierForID(preferences::ambientColorID) && specifierForID(preferences::ds4GroupID)) return;
    const bool ambient = readPreferenceValue(m_ds4AmbientColor).boolValue();
    PSSpecifierList rows{m_ds4Group, m_ds4AmbientColor};
    if (!ambient) rows.push_back(m_ds4ColorChooser);
    insertContiguousSpecifiers_afterSpecifier_animated(rows, pairSpecifier());
    if (!ambient) showStoredColorInChooser();
}

void JoyvaneListController::setHasConnectCell(bool show) {
    if (!show)
        removeSpecifierID_animated(preferences::connectID);
    else if (!specifierForID(preferences::connectID))
        insertSpecifier_afterSpecifierID_animated(m_connectSpecifier, preferences::connectionModeID);
}

void JoyvaneListController::setHasColorChooserSpecifier_addIfMissing(bool show, bool addIfMissing) {
    if (!show) {
        removeSpecifierID_animated(preferences::ledColorID, /*animated=*/true);
    } else if (addIfMissing && !specifierForID(preferences::ledColorID)) {
        insertSpecifier_afterSpecifierID_animated(m_ds4ColorChooser, preferences::ambientColorID, /*animated=*/true);
        showStoredColorInChooser();
    }
}

void JoyvaneListController::setHasForceExtendedCell(bool show) {
    if (specifierForID(preferences::forceExtendedID)) {
        if (!show) removeSpecifierID_animated(preferences::forceExtendedID);
    } else if (show) {
        insertSpecifier_afterSpecifier_animated(
            switchSpecifier("Force Extended Gamepad", preferences::forceExtendedKey, preferences::forceExtendedID),
            pairSpecifier());
    }
}
