#pragma once

#include <dbus/dbus.h>
#include <string>
#include <string_view>

namespace seat {

// The addresses of a list in the bus's own notation, split and unescaped by the bus's library. None when the list is
// malformed.
class AddressEntries {
public:
    explicit AddressEntries(const std::string& list) {
        if (!list.empty() && !::dbus_parse_address(list.c_str(), &m_entries, &m_count, nullptr)) m_count = 0;
    }
    ~AddressEntries() {
        if (m_entries) ::dbus_address_entries_free(m_entries);
    }
    AddressEntries(const AddressEntries&) = delete;
    AddressEntries& operator=(const AddressEntries&) = delete;

    bool empty() const { return m_count == 0; }
    DBusAddressEntry* const* begin() const { return m_entries; }
    DBusAddressEntry* const* end() const { return m_entries + m_count; }

    static std::string_view method(DBusAddressEntry* entry) { return ::dbus_address_entry_get_method(entry); }
    // Empty when the address has no such key.
    static std::string value(DBusAddressEntry* entry, const char* key) {
        const char* const found = ::dbus_address_entry_get_value(entry, key);
        return found ? found : "";
    }

private:
    DBusAddressEntry** m_entries = nullptr;
    int m_count = 0;
};

// "unix:path=..." for a socket's file.
inline std::string addressOfSocketFile(const std::string& path) {
    char* const escaped = ::dbus_address_escape_value(path.c_str());
    std::string address = std::string("unix:path=") + (escaped ? escaped : "");
    ::dbus_free(escaped);
    return address;
}

} // namespace seat
