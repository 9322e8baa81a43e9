#include "system/bus/bus_address.h"

#include "system/bus/address_entries.h"
#include "system/bus/session_bus_address.h"
#include "system/files/environment.h"

#include <algorithm>

std::string seat::busAddressToTry() {
    if (const auto& settled = sessionBusAddress(); !settled.empty()) return settled;
    const std::string folder = environment("XDG_RUNTIME_DIR");
    if (auto address = environment("DBUS_SESSION_BUS_ADDRESS"); !address.empty())
        if (address != nobodysBusAddress || folder.empty()) return address;
    return folder.empty() ? std::string() : addressOfSocketFile(folder + "/bus");
}

bool seat::isPlainBusAddress(const std::string& address) {
    const AddressEntries entries(address);
    return !entries.empty() && std::all_of(entries.begin(), entries.end(), [](DBusAddressEntry* entry) {
        return AddressEntries::method(entry) == "unix";
    });
}

std::string seat::socketFileOfBusAddress(const std::string& address) {
    for (DBusAddressEntry* const entry : AddressEntries(address)) {
        if (AddressEntries::method(entry) != "unix") continue;
        if (auto file = AddressEntries::value(entry, "path"); !file.empty()) return file;
        if (AddressEntries::value(entry, "runtime") == "yes") return environment("XDG_RUNTIME_DIR") + "/bus";
    }
    return {};
}
