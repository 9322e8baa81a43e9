#include "system/bus/SessionBusImplementation.h"

#include "platform/log.h"

#include <dbus/dbus.h>

namespace seat {

void SessionBus::Implementation::addName(const std::string& name, std::function<void(NameState)> changed) {
    if (!::dbus_validate_bus_name(name.c_str(), nullptr)) return NSLog("%s: not a name for the bus", name.c_str());
    m_names[name] = {std::move(changed)};
    if (m_connection.isReady()) return requestName(name);
    connectIfNeeded();
}

void SessionBus::Implementation::removeName(const std::string& name) {
    if (m_names.erase(name) == 0) return;
    // Also while the answer to the request is on its way: the bus takes both in order.
    if (m_connection.isReady()) callBus("ReleaseName", name, std::nullopt, nullptr);
}

void SessionBus::Implementation::requestName(const std::string& name) {
    constexpr std::uint32_t waitForIt = 0; // no flag: queue when taken, and do not let others take it away
    callBus("RequestName", name, waitForIt, [this, name](const Reply& reply) {
        if (reply.error == DBUS_ERROR_DISCONNECTED) return; // asked again when the bus is back
        if (!reply.error.empty()) return NSLog("name %s: %s", name.c_str(), reply.error.c_str());
        const auto answer = reply.arguments.empty() ? 0 : reply.arguments[0].integerValue();
        if (answer != DBUS_REQUEST_NAME_REPLY_IN_QUEUE) return setNameState(name, NameState::Owned);
        NSLog("name %s: another program has it; waiting for it", name.c_str());
        setNameState(name, NameState::Queued);
    });
}

void SessionBus::Implementation::setNameState(const std::string& name, NameState state) {
    const auto found = m_names.find(name);
    if (found == m_names.end() || found->second.state == state) return;
    found->second.state = state;
    const auto changed = found->second.changed; // it may remove the name
    if (changed) changed(state);
}

// The bus's own word: it comes when a name that was waited for is free, or when one is taken away.
bool SessionBus::Implementation::handleNameSignal(DBusMessage& message) {
    if (!::dbus_message_has_sender(&message, DBUS_SERVICE_DBUS)) return false;
    const bool acquired = ::dbus_message_is_signal(&message, DBUS_INTERFACE_DBUS, "NameAcquired");
    if (!acquired && !::dbus_message_is_signal(&message, DBUS_INTERFACE_DBUS, "NameLost")) return false;
    const char* name = nullptr;
    if (!::dbus_message_get_args(&message, nullptr, DBUS_TYPE_STRING, &name, DBUS_TYPE_INVALID)) return false;
    const auto found = m_names.find(name);
    if (found == m_names.end()) return true;
    if (acquired)
        setNameState(name, NameState::Owned);
    else if (found->second.state == NameState::Owned)
        setNameState(name, NameState::Lost);
    return true;
}

} // namespace seat
