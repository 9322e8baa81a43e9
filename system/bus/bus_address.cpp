#include "system/bus/bus_address.h"

#include "system/bus/session_bus_address.h"

#include <cstdlib>
#include <dbus/dbus.h>
#include <string_view>

namespace {

std::string environment(const char* name) {
    const char* const value = std::getenv(name);
    return value ? value : "";
}

// Calls `visit(entry)` for each of the addresses in the list until it returns false.
template <class Visit> bool forEachEntry(const std::string& address, Visit visit) {
    DBusAddressEntry** entries = nullptr;
    int count = 0;
    if (address.empty() || !::dbus_parse_address(address.c_str(), &entries, &count, nullptr)) return false;
    for (int i = 0; i < count; ++i)
        if (!visit(entries[i])) break;
    ::dbus_address_entries_free(entries);
    return count > 0;
}

std::string value(DBusAddressEntry* entry, const char* key) {
    const char* const found = ::dbus_address_entry_get_value(entry, key);
    return found ? found : "";
}

} // namespace

std::string seat::busAddressToTry() {
    if (const auto& settled = sessionBusAddress(); !settled.empty()) return settled;
    const std::string folder = environment("XDG_RUNTIME_DIR");
    if (auto address = environment("DBUS_SESSION_BUS_ADDRESS"); !address.empty())
        if (address != nobodysBusAddress || folder.empty()) return address;
    if (folder.empty()) return {};
    char* const escaped = ::dbus_address_escape_value((folder + "/bus").c_str());
    std::string address = std::string("unix:path=") + (escaped ? escaped : "");
    ::dbus_free(escaped);
    return address;
}

bool seat::isPlainBusAddress(const std::string& address) {
    bool plain = true;
    const bool valid = forEachEntry(address, [&plain](DBusAddressEntry* entry) {
        const std::string_view method = ::dbus_address_entry_get_method(entry);
        plain = method == "unix" || method == "tcp";
        return plain;
    });
    return valid && plain;
}

std::string seat::socketFileOfBusAddress(const std::string& address) {
    std::string file;
    forEachEntry(address, [&file](DBusAddressEntry* entry) {
        if (std::string_view(::dbus_address_entry_get_method(entry)) != "unix") return true;
        file = value(entry, "path");
        if (file.empty() && value(entry, "runtime") == "yes") file = environment("XDG_RUNTIME_DIR") + "/bus";
        return file.empty();
    });
    return file;
}
