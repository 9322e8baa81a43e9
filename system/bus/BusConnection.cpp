#include "system/bus/BusConnection.h"

#include "kit/dispatch/main_queue.h"
#include "platform/dispatch.h"
#include "system/bus/bus_address.h"
#include "system/socket/address.h"

#include <algorithm>
#include <dbus/dbus.h>
#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <utility>

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds answerTimeout{5000};
// What one turn of the run loop gives to messages, so that a flood of them leaves time for everything else.
constexpr int mostMessagesPerTurn = 64;
constexpr std::chrono::milliseconds longestTurn{4};

// Carries a connection from the worker to the main thread; closes it if it is not taken.
class OpenedConnection {
public:
    explicit OpenedConnection(DBusConnection* connection) : m_connection(connection) {}
    ~OpenedConnection() {
        if (!m_connection) return;
        ::dbus_connection_close(m_connection);
        ::dbus_connection_unref(m_connection);
    }
    OpenedConnection(const OpenedConnection&) = delete;
    OpenedConnection& operator=(const OpenedConnection&) = delete;

    DBusConnection* take() { return std::exchange(m_connection, nullptr); }

private:
    DBusConnection* m_connection;
};

DBusConnection* openConnection(const std::string& address, std::string& problem) {
    ::dbus_threads_init_default();
    ::dbus_connection_set_change_sigpipe(FALSE);
    DBusError error = DBUS_ERROR_INIT;
    DBusConnection* const connection = ::dbus_connection_open_private(address.c_str(), &error);
    if (::dbus_error_is_set(&error)) problem = error.message;
    ::dbus_error_free(&error);
    return connection;
}

} // namespace

// libdbus calls these with the connection object as `data`.
struct seat::BusConnection::Callbacks {
    static BusConnection& self(void* data) { return *static_cast<BusConnection*>(data); }

    static dbus_bool_t addWatch(DBusWatch* watch, void* data) {
        const int descriptor = ::dbus_watch_get_unix_fd(watch);
        self(data).m_watched[descriptor].watches.push_back(watch);
        self(data).updateWatched(descriptor);
        return TRUE;
    }
    static void removeWatch(DBusWatch* watch, void* data) {
        const int descriptor = ::dbus_watch_get_unix_fd(watch);
        std::erase(self(data).m_watched[descriptor].watches, watch);
        self(data).updateWatched(descriptor);
    }
    static void toggleWatch(DBusWatch* watch, void* data) { self(data).updateWatched(::dbus_watch_get_unix_fd(watch)); }

    static dbus_bool_t addTimeout(DBusTimeout* timeout, void* data) {
        if (!::dbus_timeout_get_enabled(timeout)) return TRUE;
        self(data).m_timeouts[timeout] =
            self(data).m_events.addTimer(std::chrono::milliseconds(::dbus_timeout_get_interval(timeout)),
                                         EventSet::Timer::Repeating, [timeout] { ::dbus_timeout_handle(timeout); });
        return TRUE;
    }
    static void removeTimeout(DBusTimeout* timeout, void* data) {
        auto& timeouts = self(data).m_timeouts;
        const auto found = timeouts.find(timeout);
        if (found == timeouts.end()) return;
        self(data).m_events.remove(found->second);
        timeouts.erase(found);
    }
    static void toggleTimeout(DBusTimeout* timeout, void* data) {
        removeTimeout(timeout, data);
        addTimeout(timeout, data);
    }

    static void dispatchStatus(DBusConnection*, DBusDispatchStatus status, void* data) {
        if (status == DBUS_DISPATCH_DATA_REMAINS && !self(data).m_isDispatching) self(data).setDispatchWaiting(true);
    }
    static DBusHandlerResult filter(DBusConnection*, DBusMessage* message, void* data) {
        if (::dbus_message_is_signal(message, DBUS_INTERFACE_LOCAL, "Disconnected")) {
            self(data).m_lossReason = "the bus closed the connection";
            return DBUS_HANDLER_RESULT_HANDLED;
        }
        return self(data).m_owner.handleMessage(*message) ? DBUS_HANDLER_RESULT_HANDLED
                                                          : DBUS_HANDLER_RESULT_NOT_YET_HANDLED;
    }
    static void helloAnswered(DBusPendingCall* call, void* data) {
        DBusMessage* const reply = ::dbus_pending_call_steal_reply(call);
        self(data).greeted(reply);
        if (reply) ::dbus_message_unref(reply);
    }
};

seat::BusConnection::BusConnection(EventSet& events, Owner& owner)
    : m_events(events), m_owner(owner), m_again(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)),
      m_againToken(events.watch(m_again.get(), EPOLLIN, [this](std::uint32_t) { dispatchSome(); })) {}

seat::BusConnection::~BusConnection() {
    close();
    m_events.remove(m_againToken);
}

void seat::BusConnection::open(const std::string& address) {
    close();
    m_state = State::Opening;
    m_attempt = std::make_shared<int>();
    m_answerTimeout = m_events.addTimer(answerTimeout, EventSet::Timer::Once, [this] { m_owner.busIsSilent(); });
    // Connecting waits when the bus does not take its connections. Nothing else of a connection does.
    dispatch_async(dispatch_get_global_queue(DISPATCH_QUEUE_PRIORITY_DEFAULT, 0),
                   [this, address, attempt = std::weak_ptr<int>(m_attempt)] {
                       std::string problem = "not the address of a running bus";
                       DBusConnection* const opened =
                           isPlainBusAddress(address) ? openConnection(address, problem) : nullptr;
                       const auto carried = std::make_shared<OpenedConnection>(opened);
                       queueOnMain([this, attempt, carried, problem] {
                           if (attempt.expired()) return;
                           if (DBusConnection* const connection = carried->take())
                               adopt(connection);
                           else
                               fail(problem);
                       });
                   });
}

void seat::BusConnection::adopt(DBusConnection* connection) {
    m_connection = connection;
    ::dbus_connection_set_exit_on_disconnect(connection, FALSE);
    int descriptor = -1;
    if (::dbus_connection_get_socket(connection, &descriptor) && !peerIsTrusted(descriptor))
        return fail("it belongs to another user");
    if (!::dbus_connection_set_watch_functions(connection, Callbacks::addWatch, Callbacks::removeWatch,
                                               Callbacks::toggleWatch, this, nullptr) ||
        !::dbus_connection_set_timeout_functions(connection, Callbacks::addTimeout, Callbacks::removeTimeout,
                                                 Callbacks::toggleTimeout, this, nullptr) ||
        !::dbus_connection_add_filter(connection, Callbacks::filter, this, nullptr))
        return fail("out of memory");
    m_filters = true;
    ::dbus_connection_set_dispatch_status_function(connection, Callbacks::dispatchStatus, this, nullptr);
    greet();
}

void seat::BusConnection::greet() {
    m_state = State::Greeting;
    DBusMessage* const hello =
        ::dbus_message_new_method_call(DBUS_SERVICE_DBUS, DBUS_PATH_DBUS, DBUS_INTERFACE_DBUS, "Hello");
    ::dbus_connection_send_with_reply(m_connection, hello, &m_hello, DBUS_TIMEOUT_INFINITE);
    ::dbus_message_unref(hello);
    if (!m_hello) return fail("the bus closed the connection");
    ::dbus_pending_call_set_notify(m_hello, Callbacks::helloAnswered, this, nullptr);
}

void seat::BusConnection::greeted(DBusMessage* reply) {
    const char* name = nullptr;
    if (!reply || ::dbus_message_get_type(reply) != DBUS_MESSAGE_TYPE_METHOD_RETURN ||
        !::dbus_message_get_args(reply, nullptr, DBUS_TYPE_STRING, &name, DBUS_TYPE_INVALID)) {
        if (m_lossReason.empty()) m_lossReason = "the bus refused the connection";
        return;
    }
    m_events.remove(std::exchange(m_answerTimeout, 0));
    ::dbus_pending_call_unref(std::exchange(m_hello, nullptr));
    m_uniqueName = name;
    m_state = State::Ready;
    m_readySince = Clock::now();
    m_owner.busIsReady();
}

std::chrono::milliseconds seat::BusConnection::age() const {
    return std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - m_readySince);
}

void seat::BusConnection::close() {
    m_state = State::Closed;
    m_attempt.reset();
    m_uniqueName.clear();
    m_lossReason.clear();
    m_events.remove(std::exchange(m_answerTimeout, 0));
    setDispatchWaiting(false);
    if (m_hello) {
        ::dbus_pending_call_cancel(m_hello);
        ::dbus_pending_call_unref(std::exchange(m_hello, nullptr));
    }
    if (DBusConnection* const connection = std::exchange(m_connection, nullptr)) {
        if (m_filters) ::dbus_connection_remove_filter(connection, Callbacks::filter, this);
        m_filters = false;
        ::dbus_connection_set_dispatch_status_function(connection, nullptr, nullptr, nullptr);
        ::dbus_connection_set_watch_functions(connection, nullptr, nullptr, nullptr, nullptr, nullptr);
        ::dbus_connection_set_timeout_functions(connection, nullptr, nullptr, nullptr, nullptr, nullptr);
        ::dbus_connection_close(connection);
        ::dbus_connection_unref(connection);
    }
}

void seat::BusConnection::fail(const std::string& reason) {
    // The argument may live in what is cleared.
    const std::string kept = reason; // NOLINT(performance-unnecessary-copy-initialization)
    close();
    m_owner.busIsGone(kept);
}

void seat::BusConnection::updateWatched(int descriptor) {
    auto& watched = m_watched[descriptor];
    m_events.remove(std::exchange(watched.token, 0));
    std::uint32_t wanted = 0;
    for (DBusWatch* const watch : watched.watches) {
        if (!::dbus_watch_get_enabled(watch)) continue;
        const unsigned flags = ::dbus_watch_get_flags(watch);
        wanted |= (flags & DBUS_WATCH_READABLE ? EPOLLIN : 0u) | (flags & DBUS_WATCH_WRITABLE ? EPOLLOUT : 0u);
    }
    if (wanted != 0)
        watched.token = m_events.watch(
            descriptor, wanted, [this, descriptor](std::uint32_t events) { descriptorReady(descriptor, events); });
    else if (watched.watches.empty())
        m_watched.erase(descriptor);
}

void seat::BusConnection::descriptorReady(int descriptor, std::uint32_t events) {
    DBusConnection* const connection = ::dbus_connection_ref(m_connection);
    unsigned happened = 0;
    if (events & EPOLLIN) happened |= DBUS_WATCH_READABLE;
    if (events & EPOLLOUT) happened |= DBUS_WATCH_WRITABLE;
    if (events & EPOLLERR) happened |= DBUS_WATCH_ERROR;
    if (events & EPOLLHUP) happened |= DBUS_WATCH_HANGUP;
    // Handling one watch may change the list.
    const auto watches = m_watched[descriptor].watches;
    for (DBusWatch* const watch : watches) {
        const auto found = m_watched.find(descriptor);
        if (found == m_watched.end() || std::ranges::find(found->second.watches, watch) == found->second.watches.end())
            continue;
        const unsigned concerned = happened & (::dbus_watch_get_flags(watch) | DBUS_WATCH_ERROR | DBUS_WATCH_HANGUP);
        if (concerned != 0 && ::dbus_watch_get_enabled(watch)) ::dbus_watch_handle(watch, concerned);
    }
    ::dbus_connection_unref(connection);
    dispatchSome();
}

void seat::BusConnection::dispatchSome() {
    // A handler may run the run loop; libdbus would wait for itself then.
    if (!m_connection || m_isDispatching) return setDispatchWaiting(false);
    DBusConnection* const connection = ::dbus_connection_ref(m_connection);
    const auto end = Clock::now() + longestTurn;
    m_isDispatching = true;
    for (int i = 0; i < mostMessagesPerTurn && m_connection == connection && m_lossReason.empty(); ++i)
        if (::dbus_connection_dispatch(connection) == DBUS_DISPATCH_COMPLETE || Clock::now() >= end) break;
    m_isDispatching = false;
    const bool more =
        m_connection == connection && ::dbus_connection_get_dispatch_status(connection) != DBUS_DISPATCH_COMPLETE;
    ::dbus_connection_unref(connection);
    setDispatchWaiting(more);
    closeIfLost();
}

void seat::BusConnection::setDispatchWaiting(bool waiting) {
    ::eventfd_t count = 0;
    if (waiting)
        ::eventfd_write(m_again.get(), 1);
    else
        ::eventfd_read(m_again.get(), &count);
}

void seat::BusConnection::closeIfLost() {
    if (m_connection && !m_lossReason.empty()) fail(m_lossReason);
}
