#include "system/bus/SessionBusImplementation.h"

#include "platform/log.h"
#include "system/bus/bus_values.h"

#include <algorithm>
#include <dbus/dbus.h>
#include <limits>
#include <string_view>

namespace {

constexpr std::size_t mostWaiting = 1000;
constexpr long mostUnwritten = 1 << 20; // bytes that a bus which does not read makes us hold

std::string text(const char* string) { return string ? string : ""; }

} // namespace

namespace seat {

// What libdbus keeps for a call until its answer comes.
struct SessionBus::Implementation::PendingCall {
    Implementation& bus; // outlives its connection, and so the call
    Token token;

    static void answered(DBusPendingCall* call, void* data) {
        DBusMessage* const reply = ::dbus_pending_call_steal_reply(call);
        auto* const self = static_cast<PendingCall*>(data);
        self->bus.callAnswered(self->token, reply);
        if (reply) ::dbus_message_unref(reply);
    }
    static void destroy(void* data) { delete static_cast<PendingCall*>(data); }
};

bool SessionBus::Implementation::isFlushed() const {
    DBusConnection* const connection = m_connection.connection();
    return m_waiting.empty() && (!connection || !::dbus_connection_has_messages_to_send(connection));
}

void SessionBus::Implementation::emitSignal(const BusSignal& signal) {
    if (!::dbus_validate_path(signal.path.c_str(), nullptr) ||
        !::dbus_validate_interface(signal.interface.c_str(), nullptr) ||
        !::dbus_validate_member(signal.member.c_str(), nullptr))
        return NSLog("signal %s.%s: not a name for the bus", signal.interface.c_str(), signal.member.c_str());
    send(::dbus_message_new_signal(signal.path.c_str(), signal.interface.c_str(), signal.member.c_str()), {}, nullptr);
}

void SessionBus::Implementation::call(const BusMethod& method, const std::string& signature,
                                      const std::vector<id>& arguments, std::chrono::milliseconds timeout,
                                      std::function<void(const Reply&)> replied) {
    const auto refuse = [&](const char* why) {
        NSLog("call %s to %s: %s", method.member.c_str(), method.destination.c_str(), why);
        if (replied) replied({DBUS_ERROR_INVALID_ARGS, {}});
    };
    if (!::dbus_validate_bus_name(method.destination.c_str(), nullptr) ||
        !::dbus_validate_path(method.path.c_str(), nullptr) ||
        !::dbus_validate_interface(method.interface.c_str(), nullptr) ||
        !::dbus_validate_member(method.member.c_str(), nullptr) ||
        !::dbus_signature_validate(signature.c_str(), nullptr))
        return refuse("not names for the bus");
    DBusMessage* const message = ::dbus_message_new_method_call(method.destination.c_str(), method.path.c_str(),
                                                                method.interface.c_str(), method.member.c_str());
    if (!appendArguments(*message, signature, arguments)) {
        ::dbus_message_unref(message);
        return refuse("its arguments cannot be sent");
    }
    send(message, timeout, std::move(replied));
}

void SessionBus::Implementation::send(DBusMessage* message, std::chrono::milliseconds timeout,
                                      std::function<void(const Reply&)> replied) {
    const Waiting outgoing{message, timeout, std::move(replied)};
    if (m_connection.isReady()) return sendNow(outgoing);
    m_waiting.push_back(outgoing);
    connectIfNeeded();
    // With no bus about to come nobody will ever take it.
    if (m_waiting.size() > mostWaiting || m_isSilent || m_connection.isClosed()) dropWaiting();
}

void SessionBus::Implementation::sendNow(const Waiting& outgoing) {
    DBusConnection* const connection = m_connection.connection();
    if (!connection || ::dbus_connection_get_outgoing_size(connection) > mostUnwritten) {
        NSLog("session bus %s: does not take what is sent; dropped", m_address.c_str());
        if (outgoing.replied) outgoing.replied({DBUS_ERROR_LIMITS_EXCEEDED, {}});
    } else if (!outgoing.replied) {
        ::dbus_message_set_no_reply(outgoing.message, TRUE);
        ::dbus_connection_send(connection, outgoing.message, nullptr);
    } else {
        const auto wanted = std::min<std::int64_t>(outgoing.timeout.count(), std::numeric_limits<int>::max());
        DBusPendingCall* pending = nullptr;
        ::dbus_connection_send_with_reply(connection, outgoing.message, &pending, static_cast<int>(wanted));
        if (pending) {
            m_calls[++m_last] = outgoing.replied;
            ::dbus_pending_call_set_notify(pending, PendingCall::answered, new PendingCall{*this, m_last},
                                           PendingCall::destroy);
            ::dbus_pending_call_unref(pending);
        } else {
            outgoing.replied({DBUS_ERROR_DISCONNECTED, {}});
        }
    }
    ::dbus_message_unref(outgoing.message);
}

void SessionBus::Implementation::callAnswered(Token call, DBusMessage* message) {
    const auto waiting = m_calls.extract(call);
    if (!waiting) return; // it was told that the bus has gone
    Reply reply;
    if (!message) {
        reply.error = DBUS_ERROR_NO_REPLY;
    } else if (::dbus_message_get_type(message) == DBUS_MESSAGE_TYPE_ERROR) {
        reply.error = text(::dbus_message_get_error_name(message));
    } else if (auto arguments = readArguments(*message, reply.error)) {
        reply.arguments = std::move(*arguments);
    }
    waiting.mapped()(reply);
}

void SessionBus::Implementation::dropWaiting() {
    const auto dropped = std::exchange(m_waiting, {});
    for (const auto& each : dropped) {
        ::dbus_message_unref(each.message);
        if (each.replied) each.replied({DBUS_ERROR_DISCONNECTED, {}});
    }
}

// To the bus itself, which is there: these set up what is wanted after each connecting.
void SessionBus::Implementation::callBus(const char* member, const std::string& argument,
                                         std::optional<std::uint32_t> flags,
                                         std::function<void(const Reply&)> replied) {
    DBusMessage* const message =
        ::dbus_message_new_method_call(DBUS_SERVICE_DBUS, DBUS_PATH_DBUS, DBUS_INTERFACE_DBUS, member);
    std::vector<id> arguments{argument};
    if (flags) arguments.emplace_back(NSNumber::numberWithUnsignedInt(*flags));
    appendArguments(*message, flags ? "su" : "s", arguments);
    sendNow({message, std::chrono::milliseconds(std::numeric_limits<int>::max()), std::move(replied)});
}

SessionBus::Token SessionBus::Implementation::addMethods(const std::string& path, const std::string& interface,
                                                         std::function<CallResult(const BusCall&)> called) {
    const Token token = ++m_last;
    m_methods[token] = {path, interface,
                        std::make_shared<std::function<CallResult(const BusCall&)>>(std::move(called))};
    return token;
}

SessionBus::Token SessionBus::Implementation::addSignal(const std::string& interface, const std::string& member,
                                                        std::function<void(const BusSignal&)> heard,
                                                        const std::string& sender) {
    const Token token = ++m_last;
    const auto& listener = m_listeners[token] = {
        interface, member, std::make_shared<std::function<void(const BusSignal&)>>(std::move(heard)), sender};
    if (m_connection.isReady())
        listen(listener, "AddMatch");
    else
        connectIfNeeded();
    return token;
}

void SessionBus::Implementation::remove(Token token) {
    m_methods.erase(token);
    const auto listener = m_listeners.extract(token);
    if (listener && m_connection.isReady()) listen(listener.mapped(), "RemoveMatch");
}

void SessionBus::Implementation::listen(const Listener& listener, const char* member) {
    const std::string from = listener.sender.empty() ? "" : "',sender='" + listener.sender;
    callBus(member, "type='signal',interface='" + listener.interface + "',member='" + listener.member + from + "'",
            std::nullopt, nullptr);
}

bool SessionBus::Implementation::handleMessage(DBusMessage& message) {
    if (::dbus_message_get_type(&message) == DBUS_MESSAGE_TYPE_SIGNAL && handleNameSignal(message)) return true;
    if (!isAwaited(message)) return false;
    const std::string sender = text(::dbus_message_get_sender(&message));
    const bool isOurs = sender == m_connection.uniqueName();
    if (!isOurs)
        m_senders.take(sender, message);
    else if (::dbus_message_get_type(&message) == DBUS_MESSAGE_TYPE_METHOD_CALL)
        hearCall(message);
    return true; // our own signal has been delivered here already
}

// Whether somebody here waits for it. What is not is answered by the library.
bool SessionBus::Implementation::isAwaited(DBusMessage& message) const {
    if (::dbus_message_get_type(&message) == DBUS_MESSAGE_TYPE_METHOD_CALL) return methodsFor(message) != nullptr;
    // A signal that is addressed to us alone has come past the rules that say whose we hear.
    if (::dbus_message_get_type(&message) != DBUS_MESSAGE_TYPE_SIGNAL || ::dbus_message_get_destination(&message))
        return false;
    return std::ranges::any_of(m_listeners, [&message](const auto& each) {
        return ::dbus_message_is_signal(&message, each.second.interface.c_str(), each.second.member.c_str());
    });
}

void SessionBus::Implementation::askForUser(const std::string& sender,
                                            std::function<void(std::optional<std::uint32_t>)> answered) {
    callBus("GetConnectionUnixUser", sender, std::nullopt, [answered = std::move(answered)](const Reply& reply) {
        if (!reply.error.empty() || reply.arguments.empty()) return answered(std::nullopt);
        answered(static_cast<std::uint32_t>(reply.arguments[0].integerValue()));
    });
}

void SessionBus::Implementation::hear(DBusMessage& message) {
    if (::dbus_message_get_type(&message) == DBUS_MESSAGE_TYPE_SIGNAL)
        hearSignal(message);
    else
        hearCall(message);
}

void SessionBus::Implementation::hearSignal(DBusMessage& message) {
    const BusSignal signal{text(::dbus_message_get_path(&message)), text(::dbus_message_get_interface(&message)),
                           text(::dbus_message_get_member(&message))};
    std::vector<std::shared_ptr<std::function<void(const BusSignal&)>>> concerned;
    for (const auto& [token, listener] : m_listeners)
        if (listener.interface == signal.interface && listener.member == signal.member)
            concerned.push_back(listener.heard);
    for (const auto& heard : concerned) (*heard)(signal);
}

const SessionBus::Implementation::Methods* SessionBus::Implementation::methodsFor(DBusMessage& message) const {
    const std::string path = text(::dbus_message_get_path(&message));
    std::string interface = text(::dbus_message_get_interface(&message));
    if (interface.empty()) interface = text(::dbus_message_get_destination(&message));
    const Methods* found = nullptr;
    for (const auto& [token, methods] : m_methods)
        if (methods.path == path && methods.interface == interface) found = &methods;
    return found;
}

void SessionBus::Implementation::hearCall(DBusMessage& message) {
    constexpr const char* nobodyWaits = "nobody waits for it";
    const auto* const methods = methodsFor(message);
    if (!methods) return answer(message, DBUS_ERROR_UNKNOWN_METHOD, nobodyWaits); // no more
    const auto called = methods->called;
    BusCall call{text(::dbus_message_get_sender(&message)), text(::dbus_message_get_member(&message)), nullptr};
    std::string problem;
    const auto arguments = readArguments(message, problem);
    if (arguments && arguments->size() == 1) call.dictionary = arguments->front().object<NSDictionary>();
    if (arguments && !arguments->empty() && !call.dictionary) problem = "it carries no dictionary";
    const auto sayDropped = [&call](LineLimit& limit, const char* why) {
        if (const auto more = limit.pass())
            NSLog("message %s from %s: %s; dropped%s", call.member.c_str(), call.sender.c_str(), why, more->c_str());
    };
    if (!problem.empty()) {
        sayDropped(m_invalid, problem.c_str());
        answer(message, DBUS_ERROR_INVALID_ARGS, problem);
    } else if ((*called)(call) == CallResult::UnknownMethod) {
        sayDropped(m_unknown, nobodyWaits);
        answer(message, DBUS_ERROR_UNKNOWN_METHOD, nobodyWaits);
    } else {
        answer(message, nullptr, "");
    }
}

// What another user's program has sent.
void SessionBus::Implementation::refuse(DBusMessage& message) {
    if (::dbus_message_get_type(&message) == DBUS_MESSAGE_TYPE_METHOD_CALL)
        answer(message, DBUS_ERROR_ACCESS_DENIED, "another user's");
}

void SessionBus::Implementation::answer(DBusMessage& call, const char* error, const std::string& explanation) {
    DBusConnection* const connection = m_connection.connection();
    if (!connection || ::dbus_message_get_no_reply(&call)) return;
    // Whoever calls without reading the answers must not fill our memory.
    if (::dbus_connection_get_outgoing_size(connection) > mostUnwritten) return;
    DBusMessage* const reply =
        error ? ::dbus_message_new_error(&call, error, explanation.c_str()) : ::dbus_message_new_method_return(&call);
    ::dbus_connection_send(connection, reply, nullptr);
    ::dbus_message_unref(reply);
}

} // namespace seat
