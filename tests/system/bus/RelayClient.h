#pragma once

// Who talks through a relay, and to it: the toolkit's side, a program that answers, and a bus that says what it is
// told.

#include "system/files/Descriptor.h"
#include "tests/support/TemporaryFolder.h"

#include <chrono>
#include <cstring>
#include <dbus/dbus.h>
#include <functional>
#include <string>
#include <sys/socket.h>
#include <sys/un.h>
#include <thread>

using Clock = std::chrono::steady_clock;

// Calls as the toolkit does: each waits for its answer, however long that takes.
class RelayClient {
public:
    explicit RelayClient(std::string address) : m_address(std::move(address)) {}
    ~RelayClient() {
        if (!m_connection) return;
        ::dbus_connection_close(m_connection);
        ::dbus_connection_unref(m_connection);
    }
    RelayClient(const RelayClient&) = delete;
    RelayClient& operator=(const RelayClient&) = delete;

    // Connects; false when that fails.
    bool greet() {
        m_connection = ::dbus_connection_open_private(m_address.c_str(), nullptr);
        if (!m_connection) return false;
        ::dbus_connection_set_exit_on_disconnect(m_connection, FALSE);
        return ::dbus_bus_register(m_connection, nullptr);
    }
    bool isConnected() const { return ::dbus_connection_get_is_connected(m_connection); }
    std::string uniqueName() const { return ::dbus_bus_get_unique_name(m_connection); }

    // "true", "false", or the name of an error.
    std::string nameHasOwner(const std::string& name) const {
        return call(DBUS_SERVICE_DBUS, "NameHasOwner", name.c_str());
    }
    // The text or truth that is answered, or the name of an error.
    std::string call(const char* destination, const char* member, const char* argument = nullptr) const {
        DBusMessage* const call = ::dbus_message_new_method_call(destination, "/", destination, member);
        if (argument) ::dbus_message_append_args(call, DBUS_TYPE_STRING, &argument, DBUS_TYPE_INVALID);
        DBusError error = DBUS_ERROR_INIT;
        DBusMessage* const reply = ::dbus_connection_send_with_reply_and_block(m_connection, call, 20000, &error);
        ::dbus_message_unref(call);
        std::string result = reply ? textOf(*reply) : error.name;
        if (reply) ::dbus_message_unref(reply);
        ::dbus_error_free(&error);
        return result;
    }
    // From now on, by the bus's word.
    void listen(const char* rule) const {
        DBusError error = DBUS_ERROR_INIT;
        ::dbus_bus_add_match(m_connection, rule, &error);
        ::dbus_error_free(&error);
    }
    // Whether such a signal comes; others are dropped.
    bool hears(const char* interface, const char* member) const {
        return becomes([&] {
            ::dbus_connection_read_write(m_connection, 10);
            DBusMessage* const message = ::dbus_connection_pop_message(m_connection);
            if (!message) return false;
            const bool isIt = ::dbus_message_is_signal(message, interface, member);
            ::dbus_message_unref(message);
            return isIt;
        });
    }
    bool becomes(const std::function<bool()>& condition) const {
        const auto end = Clock::now() + std::chrono::seconds(20);
        while (!condition()) {
            if (Clock::now() > end) return false;
            std::this_thread::yield();
        }
        return true;
    }

private:
    static std::string textOf(DBusMessage& message) {
        const char* text = nullptr;
        dbus_bool_t truth = FALSE;
        if (::dbus_message_get_args(&message, nullptr, DBUS_TYPE_STRING, &text, DBUS_TYPE_INVALID)) return text;
        if (::dbus_message_get_args(&message, nullptr, DBUS_TYPE_BOOLEAN, &truth, DBUS_TYPE_INVALID))
            return truth ? "true" : "false";
        DBusMessageIter all;
        DBusMessageIter value;
        if (!::dbus_message_iter_init(&message, &all) || ::dbus_message_iter_get_arg_type(&all) != DBUS_TYPE_VARIANT)
            return {};
        ::dbus_message_iter_recurse(&all, &value);
        if (::dbus_message_iter_get_arg_type(&value) != DBUS_TYPE_BOOLEAN) return {};
        ::dbus_message_iter_get_basic(&value, &truth);
        return truth ? "true" : "false";
    }

    std::string m_address;
    DBusConnection* m_connection = nullptr;
};

// Another program on the bus, which owns a name and answers the first call of it with a text.
class AnsweringPeer {
public:
    AnsweringPeer(const std::string& bus, const char* name, std::string answer) : m_answer(std::move(answer)) {
        m_connection = ::dbus_connection_open_private(bus.c_str(), nullptr);
        ::dbus_connection_set_exit_on_disconnect(m_connection, FALSE);
        ::dbus_bus_register(m_connection, nullptr);
        ::dbus_bus_request_name(m_connection, name, 0, nullptr);
        m_thread = std::thread([this] { serve(); });
    }
    ~AnsweringPeer() {
        m_thread.join();
        ::dbus_connection_close(m_connection);
        ::dbus_connection_unref(m_connection);
    }
    AnsweringPeer(const AnsweringPeer&) = delete;
    AnsweringPeer& operator=(const AnsweringPeer&) = delete;

private:
    void serve() {
        const auto end = Clock::now() + std::chrono::seconds(20);
        for (bool isAnswered = false; !isAnswered && Clock::now() < end;) {
            ::dbus_connection_read_write(m_connection, 10);
            DBusMessage* const message = ::dbus_connection_pop_message(m_connection);
            if (!message) continue;
            if (::dbus_message_get_type(message) == DBUS_MESSAGE_TYPE_METHOD_CALL) {
                const char* const text = m_answer.c_str();
                DBusMessage* const reply = ::dbus_message_new_method_return(message);
                ::dbus_message_append_args(reply, DBUS_TYPE_STRING, &text, DBUS_TYPE_INVALID);
                ::dbus_connection_send(m_connection, reply, nullptr);
                ::dbus_connection_flush(m_connection);
                ::dbus_message_unref(reply);
                isAnswered = true;
            }
            ::dbus_message_unref(message);
        }
    }

    DBusConnection* m_connection;
    std::string m_answer;
    std::thread m_thread;
};

// With a text, as it goes over the wire, to the call with which the relay begins.
inline std::string answerToTheFirstCall(const char* text) {
    DBusMessage* const answer = ::dbus_message_new(DBUS_MESSAGE_TYPE_METHOD_RETURN);
    ::dbus_message_set_reply_serial(answer, 0xffffffff);
    ::dbus_message_set_sender(answer, DBUS_SERVICE_DBUS);
    ::dbus_message_append_args(answer, DBUS_TYPE_STRING, &text, DBUS_TYPE_INVALID);
    ::dbus_message_set_serial(answer, 1);
    char* bytes = nullptr;
    int length = 0;
    ::dbus_message_marshal(answer, &bytes, &length);
    const std::string result(bytes, static_cast<std::size_t>(length));
    ::dbus_free(bytes);
    ::dbus_message_unref(answer);
    return result;
}

// Answers who connects, one after the other, with two texts, the second one after whatever is said to the first.
class FakeBus {
public:
    FakeBus(std::string first, std::string second) : m_listener(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        sockaddr_un name{};
        name.sun_family = AF_UNIX;
        std::strcpy(name.sun_path, m_folder.file("bus").c_str());
        if (::bind(m_listener.get(), reinterpret_cast<const sockaddr*>(&name), sizeof name) != 0) return;
        ::listen(m_listener.get(), 4);
        m_thread = std::thread([this, first = std::move(first), second = std::move(second)] { serve(first, second); });
    }
    ~FakeBus() {
        ::shutdown(m_listener.get(), SHUT_RDWR);
        if (m_thread.joinable()) m_thread.join();
    }
    FakeBus(const FakeBus&) = delete;
    FakeBus& operator=(const FakeBus&) = delete;

    std::string address() const { return "unix:path=" + m_folder.file("bus"); }

private:
    void serve(const std::string& first, const std::string& second) const {
        while (const seat::Descriptor caller{::accept(m_listener.get(), nullptr, nullptr)}) {
            char bytes[1024];
            if (::recv(caller.get(), bytes, sizeof bytes, 0) <= 0) continue;
            ::send(caller.get(), first.data(), first.size(), MSG_NOSIGNAL);
            if (::recv(caller.get(), bytes, sizeof bytes, 0) <= 0) continue;
            ::send(caller.get(), second.data(), second.size(), MSG_NOSIGNAL);
            while (::recv(caller.get(), bytes, sizeof bytes, 0) > 0) {
            }
        }
    }

    testing_support::TemporaryFolder m_folder;
    seat::Descriptor m_listener;
    std::thread m_thread;
};
