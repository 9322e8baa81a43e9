#include "system/bus/accessibility_calls.h"

#include <dbus/dbus.h>
#include <string_view>

namespace {

constexpr const char* accessibility = "org.a11y.Bus";
constexpr const char* registry = "org.a11y.atspi.Registry";

bool isCallTo(DBusMessage& call, const char* destination, const char* member) {
    return ::dbus_message_has_destination(&call, destination) && (!member || ::dbus_message_has_member(&call, member));
}

bool asksForAccessibility(DBusMessage& call) {
    const char* name = nullptr;
    return isCallTo(call, DBUS_SERVICE_DBUS, "NameHasOwner") &&
           ::dbus_message_get_args(&call, nullptr, DBUS_TYPE_STRING, &name, DBUS_TYPE_INVALID) &&
           std::string_view(name) == accessibility;
}

} // namespace

void seat::BusMessageRelease::operator()(DBusMessage* message) const { ::dbus_message_unref(message); }

seat::BusMessage seat::readBusMessage(const std::string& bytes) {
    return BusMessage(::dbus_message_demarshal(bytes.data(), static_cast<int>(bytes.size()), nullptr));
}

std::string seat::bytesOfBusMessage(DBusMessage& message, std::uint32_t serial) {
    ::dbus_message_set_serial(&message, serial);
    char* bytes = nullptr;
    int length = 0;
    if (!::dbus_message_marshal(&message, &bytes, &length)) return {};
    std::string result(bytes, static_cast<std::size_t>(length));
    ::dbus_free(bytes);
    return result;
}

seat::ToolkitCall seat::kindOfCall(DBusMessage& call) {
    if (isCallTo(call, DBUS_SERVICE_DBUS, "Hello")) return ToolkitCall::Hello;
    if (isCallTo(call, accessibility, "GetAddress")) return ToolkitCall::AccessibilityAddress;
    if (isCallTo(call, accessibility, "Get")) return ToolkitCall::AccessibilityState;
    if (asksForAccessibility(call)) return ToolkitCall::AccessibilityOwner;
    if (isCallTo(call, registry, "GetRegisteredEvents")) return ToolkitCall::EventListeners;
    return ToolkitCall::Plain;
}

std::string seat::helloCall(std::uint32_t serial) {
    const BusMessage call(
        ::dbus_message_new_method_call(DBUS_SERVICE_DBUS, DBUS_PATH_DBUS, DBUS_INTERFACE_DBUS, "Hello"));
    return bytesOfBusMessage(*call, serial);
}

std::string seat::nameGivenBy(DBusMessage& answer) {
    const char* name = nullptr;
    const bool isThere = ::dbus_message_get_type(&answer) == DBUS_MESSAGE_TYPE_METHOD_RETURN &&
                         ::dbus_message_get_args(&answer, nullptr, DBUS_TYPE_STRING, &name, DBUS_TYPE_INVALID);
    // The library ends the process over a name that it is given and that can be none.
    return isThere && ::dbus_validate_bus_name(name, nullptr) ? name : "";
}

std::string seat::helloAnswer(std::uint32_t serial, const std::string& name) {
    const BusMessage answer(::dbus_message_new(DBUS_MESSAGE_TYPE_METHOD_RETURN));
    ::dbus_message_set_reply_serial(answer.get(), serial);
    ::dbus_message_set_sender(answer.get(), DBUS_SERVICE_DBUS);
    ::dbus_message_set_destination(answer.get(), name.c_str());
    const char* const text = name.c_str();
    ::dbus_message_append_args(answer.get(), DBUS_TYPE_STRING, &text, DBUS_TYPE_INVALID);
    return bytesOfBusMessage(*answer, serial);
}

std::string seat::noAnswer(std::uint32_t serial) {
    const BusMessage error(::dbus_message_new(DBUS_MESSAGE_TYPE_ERROR));
    ::dbus_message_set_error_name(error.get(), DBUS_ERROR_NO_REPLY);
    ::dbus_message_set_reply_serial(error.get(), serial);
    ::dbus_message_set_sender(error.get(), DBUS_SERVICE_DBUS);
    return bytesOfBusMessage(*error, serial);
}

std::string seat::affirmativeAnswer(ToolkitCall kind, std::uint32_t serial) {
    if (kind != ToolkitCall::AccessibilityOwner && kind != ToolkitCall::AccessibilityState) return noAnswer(serial);
    const BusMessage answer(::dbus_message_new(DBUS_MESSAGE_TYPE_METHOD_RETURN));
    ::dbus_message_set_reply_serial(answer.get(), serial);
    ::dbus_message_set_sender(answer.get(), DBUS_SERVICE_DBUS);
    const dbus_bool_t yes = TRUE;
    if (kind == ToolkitCall::AccessibilityOwner) {
        ::dbus_message_append_args(answer.get(), DBUS_TYPE_BOOLEAN, &yes, DBUS_TYPE_INVALID);
    } else {
        DBusMessageIter all;
        DBusMessageIter value;
        ::dbus_message_iter_init_append(answer.get(), &all);
        ::dbus_message_iter_open_container(&all, DBUS_TYPE_VARIANT, DBUS_TYPE_BOOLEAN_AS_STRING, &value);
        ::dbus_message_iter_append_basic(&value, DBUS_TYPE_BOOLEAN, &yes);
        ::dbus_message_iter_close_container(&all, &value);
    }
    return bytesOfBusMessage(*answer, serial);
}

std::string seat::answerWithAddress(DBusMessage& answer, const std::function<std::string(const std::string&)>& change) {
    const std::uint32_t serial = ::dbus_message_get_serial(&answer);
    const char* address = nullptr;
    if (!::dbus_message_get_args(&answer, nullptr, DBUS_TYPE_STRING, &address, DBUS_TYPE_INVALID))
        return bytesOfBusMessage(answer, serial);
    const BusMessage changed(::dbus_message_new(DBUS_MESSAGE_TYPE_METHOD_RETURN));
    ::dbus_message_set_reply_serial(changed.get(), ::dbus_message_get_reply_serial(&answer));
    ::dbus_message_set_sender(changed.get(), ::dbus_message_get_sender(&answer));
    const std::string text = change(address);
    const char* const words = text.c_str();
    ::dbus_message_append_args(changed.get(), DBUS_TYPE_STRING, &words, DBUS_TYPE_INVALID);
    return bytesOfBusMessage(*changed, serial);
}

std::string seat::signalToAskAgain(ToolkitCall kind, DBusMessage& lateAnswer) {
    const char* const sender = ::dbus_message_get_sender(&lateAnswer);
    if (!sender) return {};
    const char* const none = "";
    BusMessage signal;
    if (kind == ToolkitCall::AccessibilityOwner || kind == ToolkitCall::AccessibilityState) {
        signal.reset(::dbus_message_new_signal(DBUS_PATH_DBUS, DBUS_INTERFACE_DBUS, "NameOwnerChanged"));
        ::dbus_message_set_sender(signal.get(), DBUS_SERVICE_DBUS);
        ::dbus_message_append_args(signal.get(), DBUS_TYPE_STRING, &accessibility, DBUS_TYPE_STRING, &none,
                                   DBUS_TYPE_STRING, &sender, DBUS_TYPE_INVALID);
    } else if (kind == ToolkitCall::EventListeners) {
        signal.reset(::dbus_message_new_signal("/org/a11y/atspi/registry", registry, "EventListenerRegistered"));
        ::dbus_message_set_sender(signal.get(), sender);
        ::dbus_message_append_args(signal.get(), DBUS_TYPE_STRING, &none, DBUS_TYPE_STRING, &none, DBUS_TYPE_INVALID);
    } else {
        return {};
    }
    return bytesOfBusMessage(*signal, ::dbus_message_get_serial(&lateAnswer));
}
