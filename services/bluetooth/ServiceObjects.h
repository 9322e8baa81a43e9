#pragma once

#include "services/bluetooth/Client.h"
#include "services/common/Message.h"

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace bluetooth {

// One of the computer's adapters, as the service shows it.
struct AdapterObject {
    bool isPowered = false;
    bool isBlocked = false;
};

// One device at one adapter. A device that two adapters know has two.
struct DeviceObject {
    std::string adapter; // the path
    Device device;
    std::uint32_t classOfDevice = 0;
    std::uint16_t appearance = 0;
    std::string icon;
    bool hasSignalStrength = false;
    bool hasAddress = false; // without one it is not told to anybody
};

// What the service has told of its objects, kept up to date from its messages. Values of another type than documented
// are passed over; a message that cannot be read to its end leaves what had been read.
class ServiceObjects {
public:
    // At a path with a dictionary of interfaces ("a{sa{sv}}"): the objects appear, or get more interfaces.
    void readInterfaces(const std::string& path, ::sd_bus_message* message);
    // The answer to GetManagedObjects. False when it is none.
    bool readAll(::sd_bus_message* message);
    // "PropertiesChanged": the interface's name, changed values, names of those that are no more.
    void readChanges(const std::string& path, ::sd_bus_message* message);
    // "InterfacesRemoved", after the path: the names of the interfaces. With an adapter go its devices.
    void readRemoved(const std::string& path, ::sd_bus_message* message);
    void clear();

    const std::map<std::string, DeviceObject>& devices() const { return m_devices; }
    AdapterState stateOf(const std::string& adapter) const;
    // The one that is used; empty without any.
    std::string adapterInUse() const;
    // The device's object: a connected one before others, then a paired one, then one at the adapter in use. Empty when
    // there is none.
    std::string pathOf(const Address& address) const;

private:
    void readProperties(const std::string& path, const std::string& interface, ::sd_bus_message* message);
    bool readAdapterProperty(AdapterObject& adapter, std::string_view name, ::sd_bus_message* message) const;
    bool readDeviceProperty(DeviceObject& object, std::string_view name, ::sd_bus_message* message) const;
    void forget(const std::string& path, const std::string& interface);

    std::map<std::string, AdapterObject> m_adapters;
    std::map<std::string, DeviceObject> m_devices;
};

} // namespace bluetooth
