#pragma once

// The Bluetooth service's own names on the system bus.

namespace bluetooth {

inline constexpr const char* serviceName = "org.bluez";
inline constexpr const char* rootPath = "/";
inline constexpr const char* managerPath = "/org/bluez"; // where agents are registered
inline constexpr const char* managerInterface = "org.bluez.AgentManager1";
inline constexpr const char* agentInterface = "org.bluez.Agent1";
inline constexpr const char* adapterInterface = "org.bluez.Adapter1";
inline constexpr const char* deviceInterface = "org.bluez.Device1";
inline constexpr const char* batteryInterface = "org.bluez.Battery1";
inline constexpr const char* objectsInterface = "org.freedesktop.DBus.ObjectManager";
inline constexpr const char* propertiesInterface = "org.freedesktop.DBus.Properties";
inline constexpr const char* busName = "org.freedesktop.DBus";
inline constexpr const char* busPath = "/org/freedesktop/DBus";

} // namespace bluetooth
