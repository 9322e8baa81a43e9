#pragma once

// The preferences store: its file, its keys, and the rows that are found by identifier.

namespace preferences {

inline constexpr const char* file = "/var/mobile/Library/Preferences/com.quorrel.joyvane.plist";
inline constexpr const char* folder = "/var/mobile/Library/Preferences/";
inline constexpr const char* fileName = "com.quorrel.joyvane.plist";
inline constexpr const char* domain = "com.quorrel.joyvane";
inline constexpr const char* changedNotification = "com.quorrel.jvnprefs.changed";

inline constexpr const char* ambientColorKey = "JVNAmbientColorKey";
inline constexpr const char* ledColorKey = "JVNLEDColorKey";
inline constexpr const char* forceExtendedKey = "JVNForceExtendedGamepad";
inline constexpr const char* ps4BluetoothAddressKey = "PS4BluetoothAddress";

inline constexpr const char* controllerTypeID = "controller_type";
inline constexpr const char* connectionModeID = "connection_mode";
inline constexpr const char* pairLabelID = "pair_label";
inline constexpr const char* ds4GroupID = "JVNDS4GroupID";
inline constexpr const char* ambientColorID = "JVNAmbientColorID";
inline constexpr const char* ledColorID = "JVNLEDColorID";
inline constexpr const char* connectID = "JVNConnectID";
inline constexpr const char* forceExtendedID = "force_extended";

} // namespace preferences
