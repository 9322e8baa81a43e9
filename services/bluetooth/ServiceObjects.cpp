#include "services/bluetooth/ServiceObjects.h"

#include "services/bluetooth/service_names.h"

#include <tuple>

namespace bluetooth {
namespace {

// The number tables of the radio's own standard: class of device (major class, minor class) and appearance.
bool isGamepad(const DeviceObject& object) {
    constexpr std::uint32_t peripheral = 5;
    const std::uint32_t major = object.classOfDevice >> 8 & 0x1f;
    const std::uint32_t minor = object.classOfDevice >> 2 & 0xf;
    if (major == peripheral && (minor == 1 || minor == 2)) return true; // joystick, gamepad
    return object.appearance == 0x03c3 || object.appearance == 0x03c4 || object.icon == "input-gaming";
}

bool readFlag(::sd_bus_message* message, bool& flag) {
    int value = 0;
    if (!services::readVariant(message, "b", value)) return false;
    flag = value != 0;
    return true;
}

bool readText(::sd_bus_message* message, std::string& text, const char* type = "s") {
    const char* value = nullptr;
    if (!services::readVariant(message, type, value)) return false;
    text = value;
    return true;
}

} // namespace

bool ServiceObjects::readAdapterProperty(AdapterObject& adapter, std::string_view name,
                                         ::sd_bus_message* message) const {
    if (name == "Powered") return readFlag(message, adapter.isPowered);
    if (name != "PowerState") return false;
    std::string state;
    if (!readText(message, state)) return false;
    adapter.isBlocked = state == "off-blocked";
    return true;
}

bool ServiceObjects::readDeviceProperty(DeviceObject& object, std::string_view name, ::sd_bus_message* message) const {
    Device& device = object.device;
    if (name == "Paired") return readFlag(message, device.isPaired);
    if (name == "Trusted") return readFlag(message, device.isTrusted);
    if (name == "WakeAllowed") return readFlag(message, device.mayWake);
    if (name == "Connected") return readFlag(message, device.isConnected);
    if (name == "Name") return readText(message, device.name);
    if (name == "Icon") return readText(message, object.icon);
    if (name == "Adapter") return readText(message, object.adapter, "o");
    if (name == "Class") return services::readVariant(message, "u", object.classOfDevice);
    if (name == "Appearance") return services::readVariant(message, "q", object.appearance);
    if (name == "RSSI") {
        std::int16_t strength = 0;
        return object.hasSignalStrength = services::readVariant(message, "n", strength);
    }
    if (name == "Address") {
        std::string text;
        if (!readText(message, text)) return false;
        if (const auto address = Address::fromText(text)) {
            device.address = *address;
            object.hasAddress = true;
        }
        return true;
    }
    return false;
}

void ServiceObjects::readProperties(const std::string& path, const std::string& interface, ::sd_bus_message* message) {
    if (interface == adapterInterface) {
        auto& adapter = m_adapters[path];
        services::readDictionary(message, "v",
                                 [&](std::string_view name) { return readAdapterProperty(adapter, name, message); });
    } else if (interface == deviceInterface) {
        auto& object = m_devices[path];
        services::readDictionary(message, "v",
                                 [&](std::string_view name) { return readDeviceProperty(object, name, message); });
        object.device.isGamepad = isGamepad(object);
    } else if (interface == batteryInterface && m_devices.contains(path)) {
        services::readDictionary(message, "v", [&](std::string_view name) {
            std::uint8_t percent = 0;
            if (name != "Percentage" || !services::readVariant(message, "y", percent)) return false;
            m_devices[path].device.batteryPercent = percent;
            return true;
        });
    }
}

void ServiceObjects::readInterfaces(const std::string& path, ::sd_bus_message* message) {
    services::readDictionary(message, "a{sv}", [&](const std::string& interface) {
        if (interface != adapterInterface && interface != deviceInterface && interface != batteryInterface)
            return false;
        readProperties(path, interface, message);
        return true;
    });
}

bool ServiceObjects::readAll(::sd_bus_message* message) {
    clear();
    if (::sd_bus_message_enter_container(message, 'a', "{oa{sa{sv}}}") < 0) return false;
    while (::sd_bus_message_enter_container(message, 'e', "oa{sa{sv}}") > 0) {
        const char* path = nullptr;
        if (::sd_bus_message_read(message, "o", &path) <= 0) return false;
        readInterfaces(path, message);
        if (::sd_bus_message_exit_container(message) < 0) return false;
    }
    return true;
}

void ServiceObjects::readChanges(const std::string& path, ::sd_bus_message* message) {
    const char* interface = nullptr;
    if (::sd_bus_message_read(message, "s", &interface) <= 0) return;
    const bool isKnown =
        interface == std::string_view(adapterInterface) ? m_adapters.contains(path) : m_devices.contains(path);
    if (!isKnown) return;
    readProperties(path, interface, message);
    if (::sd_bus_message_enter_container(message, 'a', "s") < 0) return;
    const char* gone = nullptr;
    while (::sd_bus_message_read(message, "s", &gone) > 0)
        if (interface == std::string_view(deviceInterface) && gone == std::string_view("RSSI"))
            m_devices[path].hasSignalStrength = false;
}

void ServiceObjects::readRemoved(const std::string& path, ::sd_bus_message* message) {
    if (::sd_bus_message_enter_container(message, 'a', "s") < 0) return;
    const char* interface = nullptr;
    while (::sd_bus_message_read(message, "s", &interface) > 0) forget(path, interface);
}

void ServiceObjects::forget(const std::string& path, const std::string& interface) {
    if (interface == deviceInterface) m_devices.erase(path);
    if (interface == batteryInterface && m_devices.contains(path)) m_devices[path].device.batteryPercent.reset();
    if (interface != adapterInterface) return;
    m_adapters.erase(path);
    std::erase_if(m_devices, [&path](const auto& entry) { return entry.second.adapter == path; });
}

void ServiceObjects::clear() {
    m_adapters.clear();
    m_devices.clear();
}

AdapterState ServiceObjects::stateOf(const std::string& adapter) const {
    const auto entry = m_adapters.find(adapter);
    if (entry == m_adapters.end()) return AdapterState::Absent;
    if (entry->second.isPowered) return AdapterState::On;
    return entry->second.isBlocked ? AdapterState::Blocked : AdapterState::Off;
}

std::string ServiceObjects::adapterInUse() const {
    // "hci2" comes before "hci10".
    const auto rank = [this](const std::string& path) {
        return std::tuple(-static_cast<int>(stateOf(path)), path.size(), path);
    };
    std::string best;
    for (const auto& [path, adapter] : m_adapters)
        if (best.empty() || rank(path) < rank(best)) best = path;
    return best;
}

std::string ServiceObjects::pathOf(const Address& address) const {
    const std::string inUse = adapterInUse();
    const auto rank = [&inUse](const DeviceObject& object) {
        return std::tuple(object.device.isConnected, object.device.isPaired, object.adapter == inUse);
    };
    const std::pair<const std::string, DeviceObject>* best = nullptr;
    for (const auto& entry : m_devices) {
        if (!entry.second.hasAddress || entry.second.device.address != address) continue;
        if (!best || rank(entry.second) > rank(best->second)) best = &entry;
    }
    return best ? best->first : std::string();
}

} // namespace bluetooth
