#include "system/bus/SessionBusImplementation.h"

#include "platform/log.h"

#include <dbus/dbus.h>

namespace seat {

void SessionBus::Implementation::addName(const std::string& name, std::function<void(NameState)> changed) {
    if (!::dbus_validate_bus_name(name.c_str(), nullptr)) return NSLog("%s: not a name for the bus", name.c_str());
    m_names[name] = {std::move(changed)};
    if (!m_connection.isReady()) return connectIfNeeded();
    // In this order nobody can let go of it unnoticed.
    callBus("AddMatch", ownerRule(name), std::nullopt, nullptr);
    requestName(name);
}

void SessionBus::Implementation::removeName(const std::string& name) {
    if (m_names.erase(name) == 0) return;
    // Also while the answer to the request is on its way: the bus takes both in order.
    if (!m_connection.isReady()) return;
    callBus("ReleaseName", name, std::nullopt, nullptr);
    callBus("RemoveMatch", ownerRule(name), std::nullopt, nullptr);
}

std::string SessionBus::Implementation::ownerRule(const std::string& name) {
    return "type='signal',sender='" DBUS_SERVICE_DBUS "',interface='" DBUS_INTERFACE_DBUS
           "',member='NameOwnerChanged',arg0='" +
           name + "'";
}

void SessionBus::Implementation::requestName(const std::string& name) {
    // Others may not take it away. Nor does it fall to us at a moment of somebody else's choice: we ask for what is
    // free.
    callBus("RequestName", name, DBUS_NAME_FLAG_DO_NOT_QUEUE, [this, name](const Reply& reply) {
        if (reply.error == DBUS_ERROR_DISCONNECTED) return; // asked again when the bus is back
        if (!reply.error.empty()) return NSLog("name %s: %s", name.c_str(), reply.error.c_str());
        const auto answer = reply.arguments.empty() ? 0 : reply.arguments[0].integerValue();
        if (answer != DBUS_REQUEST_NAME_REPLY_EXISTS) return setNameState(name, NameState::Owned);
        NSLog("name %s: another program has it; waiting for it", name.c_str());
        setNameState(name, NameState::Taken);
    });
}

void SessionBus::Implementation::setNameState(const std::string& name, NameState state) {
    const auto found = m_names.find(name);
    if (found == m_names.end() || found->second.state == state) return;
    found->second.state = state;
    const auto changed = found->second.changed; // it may remove the name
    if (changed) changed(state);
}

// The bus's own word: it comes when a name is ours, when one is taken away, and when one that is wanted is free.
bool SessionBus::Implementation::handleNameSignal(DBusMessage& message) {
    if (!::dbus_message_has_sender(&message, DBUS_SERVICE_DBUS)) return false;
    const bool acquired = ::dbus_message_is_signal(&message, DBUS_INTERFACE_DBUS, "NameAcquired");
    const bool lost = ::dbus_message_is_signal(&message, DBUS_INTERFACE_DBUS, "NameLost");
    const bool changed = ::dbus_message_is_signal(&message, DBUS_INTERFACE_DBUS, "NameOwnerChanged");
    if (!acquired && !lost && !changed) return false;
    const char* name = nullptr;
    const char* before = nullptr;
    const char* after = nullptr;
    if (changed ? !::dbus_message_get_args(&message, nullptr, DBUS_TYPE_STRING, &name, DBUS_TYPE_STRING, &before,
                                           DBUS_TYPE_STRING, &after, DBUS_TYPE_INVALID)
                : !::dbus_message_get_args(&message, nullptr, DBUS_TYPE_STRING, &name, DBUS_TYPE_INVALID))
        return false;
    const auto found = m_names.find(name);
    if (found == m_names.end()) return true;
    const NameState state = found->second.state;
    if (acquired) {
        setNameState(name, NameState::Owned);
    } else if (lost) {
        if (state == NameState::Owned) setNameState(name, NameState::Lost);
    } else if (!*after && state != NameState::Owned) {
        requestName(name);
    }
    return true;
}

} // namespace seat
