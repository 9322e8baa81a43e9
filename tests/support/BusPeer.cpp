#include "tests/support/BusPeer.h"

#include <dbus/dbus.h>
#include <stdexcept>

namespace testing_support {

namespace {

DBusMessageIter open(DBusMessageIter& outer, int type, const char* signature) {
    DBusMessageIter inner;
    ::dbus_message_iter_open_container(&outer, type, signature, &inner);
    return inner;
}

} // namespace

BusPeer::BusPeer(const std::string& address) {
    ::dbus_threads_init_default();
    m_connection = ::dbus_connection_open_private(address.c_str(), nullptr);
    if (!m_connection || !::dbus_bus_register(m_connection, nullptr)) throw std::runtime_error("no bus at " + address);
    ::dbus_connection_set_exit_on_disconnect(m_connection, FALSE);
}

BusPeer::~BusPeer() {
    ::dbus_connection_close(m_connection);
    ::dbus_connection_unref(m_connection);
}

void BusPeer::emitSignal(const std::string& path, const std::string& interface, const std::string& member,
                         const std::string& destination) const {
    DBusMessage* const signal = ::dbus_message_new_signal(path.c_str(), interface.c_str(), member.c_str());
    if (!destination.empty()) ::dbus_message_set_destination(signal, destination.c_str());
    ::dbus_connection_send(m_connection, signal, nullptr);
    ::dbus_message_unref(signal);
    flush();
}

DBusMessage* BusPeer::message(const std::string& destination, const std::string& path, const std::string& interface,
                              const std::string& member, const Arguments& arguments) const {
    DBusMessage* const made = ::dbus_message_new_method_call(
        destination.c_str(), path.c_str(), interface.empty() ? nullptr : interface.c_str(), member.c_str());
    DBusMessageIter at;
    ::dbus_message_iter_init_append(made, &at);
    if (arguments) arguments(at);
    return made;
}

void BusPeer::send(const std::string& destination, const std::string& path, const std::string& interface,
                   const std::string& member, const Arguments& arguments) const {
    DBusMessage* const made = message(destination, path, interface, member, arguments);
    ::dbus_message_set_no_reply(made, TRUE);
    ::dbus_connection_send(m_connection, made, nullptr);
    ::dbus_message_unref(made);
}

std::string BusPeer::call(const std::string& destination, const std::string& path, const std::string& interface,
                          const std::string& member, const Arguments& arguments,
                          std::chrono::milliseconds timeout) const {
    DBusMessage* const made = message(destination, path, interface, member, arguments);
    DBusError error = DBUS_ERROR_INIT;
    DBusMessage* const reply =
        ::dbus_connection_send_with_reply_and_block(m_connection, made, static_cast<int>(timeout.count()), &error);
    ::dbus_message_unref(made);
    if (reply) ::dbus_message_unref(reply);
    const std::string name = ::dbus_error_is_set(&error) ? error.name : "";
    ::dbus_error_free(&error);
    return name;
}

void BusPeer::flush() const { ::dbus_connection_flush(m_connection); }

bool BusPeer::ownName(const std::string& name) const {
    const int reply = ::dbus_bus_request_name(m_connection, name.c_str(), DBUS_NAME_FLAG_DO_NOT_QUEUE, nullptr);
    return reply == DBUS_REQUEST_NAME_REPLY_PRIMARY_OWNER;
}

void BusPeer::giveUpName(const std::string& name) const {
    ::dbus_bus_release_name(m_connection, name.c_str(), nullptr);
}

bool BusPeer::nameHasOwner(const std::string& name) const {
    return ::dbus_bus_name_has_owner(m_connection, name.c_str(), nullptr) != FALSE;
}

int BusPeer::ownersAndWaiting(const std::string& name) const {
    DBusMessage* const question = message(
        DBUS_SERVICE_DBUS, DBUS_PATH_DBUS, DBUS_INTERFACE_DBUS, "ListQueuedOwners", [&name](DBusMessageIter& at) {
            const char* const text = name.c_str();
            ::dbus_message_iter_append_basic(&at, DBUS_TYPE_STRING, static_cast<const void*>(&text));
        });
    DBusMessage* const reply = ::dbus_connection_send_with_reply_and_block(m_connection, question, 10'000, nullptr);
    ::dbus_message_unref(question);
    if (!reply) return 0;
    DBusMessageIter at;
    ::dbus_message_iter_init(reply, &at);
    const int count = ::dbus_message_iter_get_element_count(&at);
    ::dbus_message_unref(reply);
    return count;
}

std::string BusPeer::uniqueName() const { return ::dbus_bus_get_unique_name(m_connection); }

void BusPeer::listen(const std::string& rule) const {
    DBusError error = DBUS_ERROR_INIT; // with it the call waits for the bus's answer
    ::dbus_bus_add_match(m_connection, rule.c_str(), &error);
    ::dbus_error_free(&error);
}

std::string BusPeer::nextSignal(std::chrono::milliseconds timeout) const {
    const auto end = std::chrono::steady_clock::now() + timeout;
    for (bool isLast = false;;) {
        while (DBusMessage* const message = ::dbus_connection_pop_message(m_connection)) {
            std::string text;
            if (::dbus_message_get_type(message) == DBUS_MESSAGE_TYPE_SIGNAL &&
                !::dbus_message_has_sender(message, DBUS_SERVICE_DBUS))
                text = std::string(::dbus_message_get_path(message)) + " " + ::dbus_message_get_interface(message) +
                       "." + ::dbus_message_get_member(message);
            ::dbus_message_unref(message);
            if (!text.empty()) return text;
        }
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
        if (isLast) return "";
        isLast = left.count() <= 0; // then what lies there already
        const int wait = isLast ? 0 : static_cast<int>(left.count());
        if (!::dbus_connection_read_write(m_connection, wait)) return "";
    }
}

BusPeer::Arguments integerDictionary(const std::string& key, int value) {
    return [key, value](DBusMessageIter& at) {
        DBusMessageIter entries = open(at, DBUS_TYPE_ARRAY, "{sv}");
        DBusMessageIter entry = open(entries, DBUS_TYPE_DICT_ENTRY, nullptr);
        const char* const text = key.c_str();
        const dbus_int32_t number = value;
        ::dbus_message_iter_append_basic(&entry, DBUS_TYPE_STRING, static_cast<const void*>(&text));
        DBusMessageIter variant = open(entry, DBUS_TYPE_VARIANT, "i");
        ::dbus_message_iter_append_basic(&variant, DBUS_TYPE_INT32, &number);
        ::dbus_message_iter_close_container(&entry, &variant);
        ::dbus_message_iter_close_container(&entries, &entry);
        ::dbus_message_iter_close_container(&at, &entries);
    };
}

} // namespace testing_support
