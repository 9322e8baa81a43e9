// The mock Bluetooth service's objects, as it shows them and tells of their changes.

#include "tests/support/MockBluetoothService.h"

#include <stdexcept>
#include <string_view>
#include <utility>

namespace testing_support {
namespace {

constexpr const char* device1 = "org.bluez.Device1";
constexpr const char* adapter1 = "org.bluez.Adapter1";
constexpr const char* battery1 = "org.bluez.Battery1";

void check(int result) {
    if (result < 0) throw std::runtime_error("mock Bluetooth service: error " + std::to_string(-result));
}

void appendFlag(::sd_bus_message* message, const char* name, bool value) {
    check(::sd_bus_message_append(message, "{sv}", name, "b", static_cast<int>(value)));
}

void appendAdapter(::sd_bus_message* message, bool isPowered) {
    check(::sd_bus_message_open_container(message, 'a', "{sv}"));
    check(::sd_bus_message_append(message, "{sv}", "Address", "s", "00:AA:01:00:00:00"));
    appendFlag(message, "Powered", isPowered);
    check(::sd_bus_message_append(message, "{sv}", "UUIDs", "as", 1, "00001124-0000-1000-8000-00805f9b34fb"));
    check(::sd_bus_message_close_container(message));
}

} // namespace

void MockBluetoothService::appendDevice(::sd_bus_message* message, const MockDevice& device) const {
    check(::sd_bus_message_open_container(message, 'a', "{sv}"));
    check(::sd_bus_message_append(message, "{sv}", "Address", "s", device.address.c_str()));
    const std::string path = pathOf(device);
    check(::sd_bus_message_append(message, "{sv}", "Adapter", "o", path.substr(0, path.rfind('/')).c_str()));
    check(::sd_bus_message_append(message, "{sv}", "Name", "s", device.name.c_str()));
    if (device.classOfDevice != 0) check(::sd_bus_message_append(message, "{sv}", "Class", "u", device.classOfDevice));
    if (device.appearance != 0) check(::sd_bus_message_append(message, "{sv}", "Appearance", "q", device.appearance));
    if (!device.icon.empty()) check(::sd_bus_message_append(message, "{sv}", "Icon", "s", device.icon.c_str()));
    appendFlag(message, "Paired", device.isPaired);
    appendFlag(message, "Trusted", device.isTrusted);
    if (device.mayWake) appendFlag(message, "WakeAllowed", true); // only of a device that can
    appendFlag(message, "Connected", device.isConnected);
    if (isSearching() && device.isDiscoverable) check(::sd_bus_message_append(message, "{sv}", "RSSI", "n", -60));
    check(::sd_bus_message_close_container(message));
}

void MockBluetoothService::appendInterfaces(::sd_bus_message* message, const MockDevice& device) const {
    check(::sd_bus_message_open_container(message, 'a', "{sa{sv}}"));
    check(::sd_bus_message_open_container(message, 'e', "sa{sv}"));
    check(::sd_bus_message_append(message, "s", device1));
    appendDevice(message, device);
    check(::sd_bus_message_close_container(message));
    if (device.battery)
        check(::sd_bus_message_append(message, "{sa{sv}}", battery1, 1, "Percentage", "y", *device.battery));
    check(::sd_bus_message_close_container(message));
}

void MockBluetoothService::sendObjects(::sd_bus_message* message) {
    ::sd_bus_message* answer = nullptr;
    check(::sd_bus_message_new_method_return(message, &answer));
    const services::Message kept(answer);
    check(::sd_bus_message_open_container(answer, 'a', "{oa{sa{sv}}}"));
    check(::sd_bus_message_append(answer, "{oa{sa{sv}}}", "/org/bluez", 1, "org.bluez.AgentManager1", 0));
    for (const auto& [name, adapter] : m_adapters) {
        check(::sd_bus_message_open_container(answer, 'e', "oa{sa{sv}}"));
        check(::sd_bus_message_append(answer, "o", ("/org/bluez/" + name).c_str()));
        check(::sd_bus_message_open_container(answer, 'a', "{sa{sv}}"));
        check(::sd_bus_message_open_container(answer, 'e', "sa{sv}"));
        check(::sd_bus_message_append(answer, "s", adapter1));
        appendAdapter(answer, adapter.isPowered);
        for (int i = 0; i < 3; ++i) check(::sd_bus_message_close_container(answer));
    }
    for (const auto& device : m_devices) {
        if (!device.isKnown || m_adapters.empty()) continue;
        check(::sd_bus_message_open_container(answer, 'e', "oa{sa{sv}}"));
        check(::sd_bus_message_append(answer, "o", pathOf(device).c_str()));
        appendInterfaces(answer, device);
        check(::sd_bus_message_close_container(answer));
    }
    check(::sd_bus_message_close_container(answer));
    check(::sd_bus_send(m_bus, answer, nullptr));
}

void MockBluetoothService::announce(const MockDevice& device) {
    ::sd_bus_message* signal = nullptr;
    check(::sd_bus_message_new_signal(m_bus, &signal, "/", "org.freedesktop.DBus.ObjectManager", "InterfacesAdded"));
    const services::Message kept(signal);
    check(::sd_bus_message_append(signal, "o", pathOf(device).c_str()));
    appendInterfaces(signal, device);
    check(::sd_bus_send(m_bus, signal, nullptr));
}

void MockBluetoothService::announceAdapter(const std::string& name) {
    ::sd_bus_message* signal = nullptr;
    check(::sd_bus_message_new_signal(m_bus, &signal, "/", "org.freedesktop.DBus.ObjectManager", "InterfacesAdded"));
    const services::Message kept(signal);
    check(::sd_bus_message_append(signal, "o", ("/org/bluez/" + name).c_str()));
    check(::sd_bus_message_open_container(signal, 'a', "{sa{sv}}"));
    check(::sd_bus_message_open_container(signal, 'e', "sa{sv}"));
    check(::sd_bus_message_append(signal, "s", adapter1));
    appendAdapter(signal, m_adapters[name].isPowered);
    for (int i = 0; i < 2; ++i) check(::sd_bus_message_close_container(signal));
    check(::sd_bus_send(m_bus, signal, nullptr));
}

void MockBluetoothService::announceGone(const std::string& path, const char* interface) {
    check(::sd_bus_emit_signal(m_bus, "/", "org.freedesktop.DBus.ObjectManager", "InterfacesRemoved", "oas",
                               path.c_str(), 1, interface));
}

void MockBluetoothService::changed(const std::string& address) {
    const MockDevice& device = this->device(address);
    if (!device.isKnown || !m_bus) return;
    ::sd_bus_message* signal = nullptr;
    check(::sd_bus_message_new_signal(m_bus, &signal, pathOf(device).c_str(), "org.freedesktop.DBus.Properties",
                                      "PropertiesChanged"));
    const services::Message kept(signal);
    check(::sd_bus_message_append(signal, "s", device1));
    appendDevice(signal, device);
    check(::sd_bus_message_append(signal, "as", isSearching() && device.isDiscoverable ? 0 : 1, "RSSI"));
    check(::sd_bus_send(m_bus, signal, nullptr));
}

void MockBluetoothService::setPowered(const std::string& name, bool isPowered) {
    m_adapters[name].isPowered = isPowered;
    if (!isPowered) m_searches.clear();
    ::sd_bus_message* signal = nullptr;
    check(::sd_bus_message_new_signal(m_bus, &signal, ("/org/bluez/" + name).c_str(), "org.freedesktop.DBus.Properties",
                                      "PropertiesChanged"));
    const services::Message kept(signal);
    check(::sd_bus_message_append(signal, "sa{sv}as", adapter1, 1, "Powered", "b", static_cast<int>(isPowered), 0));
    check(::sd_bus_send(m_bus, signal, nullptr));
}

void MockBluetoothService::addAdapter(const std::string& name, bool isPowered) {
    m_adapters[name] = {isPowered, false};
    if (m_bus) announceAdapter(name);
}

void MockBluetoothService::removeAdapter(const std::string& name) {
    m_pairing.reset();
    m_searches.clear();
    for (auto& device : m_devices)
        if (std::exchange(device.isKnown, device.isPaired)) announceGone(pathOf(device), device1);
    m_adapters.erase(name);
    announceGone("/org/bluez/" + name, adapter1);
}

void MockBluetoothService::addDevice(MockDevice device) {
    device.isKnown = device.isKnown || device.isPaired;
    m_devices.push_back(std::move(device));
    MockDevice& added = m_devices.back();
    if (isSearching() && added.isDiscoverable) added.isKnown = true;
    if (added.isKnown && m_bus) announce(added);
}

void MockBluetoothService::appear(const std::string& address) {
    MockDevice& found = device(address);
    if (!std::exchange(found.isKnown, true)) announce(found);
    changed(address);
}

void MockBluetoothService::sendNonsense(const std::string& address) {
    const std::string path = pathOf(device(address));
    const char* const properties = "org.freedesktop.DBus.Properties";
    const char* const objects = "org.freedesktop.DBus.ObjectManager";
    const char* const changes = "PropertiesChanged";
    // Values of other types, an address that is none, another body, an unknown object, a path that is none of ours.
    check(::sd_bus_emit_signal(m_bus, path.c_str(), properties, changes, "sa{sv}as", device1, 4, "Paired", "s", "no",
                               "Class", "as", 1, "x", "Connected", "a{sv}", 0, "Address", "s", "nonsense", 1, "Name"));
    check(::sd_bus_emit_signal(m_bus, path.c_str(), properties, changes, "u", 7U));
    check(::sd_bus_emit_signal(m_bus, path.c_str(), properties, changes, "sas", device1, 1, "x"));
    check(::sd_bus_emit_signal(m_bus, "/org/bluez/hci0/dev_none", properties, changes, "sa{sv}as", device1, 1,
                               "Connected", "b", 1, 0));
    check(::sd_bus_emit_signal(m_bus, "/", objects, "InterfacesAdded", "oa{sa{sv}}", "/org/bluez/hci0/dev_nothing", 1,
                               device1, 1, "Paired", "b", 1));
    check(::sd_bus_emit_signal(m_bus, "/", objects, "InterfacesAdded", "ss", "a", "b"));
    check(::sd_bus_emit_signal(m_bus, "/", objects, "InterfacesRemoved", "o", path.c_str()));
    check(::sd_bus_emit_signal(m_bus, "/", objects, "SomethingNew", "s", "x"));
}

void MockBluetoothService::removeDevice(const std::string& address) {
    const MockDevice gone = device(address);
    std::erase_if(m_devices, [&address](const MockDevice& device) { return device.address == address; });
    if (gone.isKnown) announceGone(pathOf(gone), device1);
}

} // namespace testing_support
