#include "services/jvninputd/Sessions.h"

#include "services/common/log.h"

#include <cstdlib>
#include <cstring>
#include <sys/epoll.h>
#include <utility>

namespace jvninputd {

namespace {

constexpr const char* seat = "seat0";
constexpr const char* login = "org.freedesktop.login1";
constexpr const char* sessionInterface = "org.freedesktop.login1.Session";
constexpr const char* lockedHint = "LockedHint";
// A bus that does not answer must not keep somebody from playing.
constexpr std::uint64_t answerTime = 5'000'000;

// One that its user has left stays in the records until its last process has gone.
bool isOpen(const char* session) {
    char* state = nullptr;
    const bool open = ::sd_session_get_state(session, &state) >= 0 && std::strcmp(state, "closing") != 0;
    std::free(state);
    return open;
}

} // namespace

Sessions::Sessions(services::EventLoop& loop, std::function<void()> changed)
    : m_loop(loop), m_changed(std::move(changed)) {
    watchRecords();
    readRecords();
}

Sessions::~Sessions() {
    for (Records& records : m_records) {
        records.changed.reset();
        ::sd_login_monitor_unref(records.monitor);
    }
    disconnect();
}

void Sessions::watchRecords() {
    for (Records& records : m_records) {
        const int result = ::sd_login_monitor_new(records.kind, &records.monitor);
        if (result < 0) {
            services::log("watching the login manager's records: %s", std::strerror(-result));
            continue;
        }
        records.changed =
            m_loop.watch(::sd_login_monitor_get_fd(records.monitor), EPOLLIN, [this, &records](std::uint32_t) {
                ::sd_login_monitor_flush(records.monitor);
                readRecords();
                m_changed();
            });
    }
}

bool Sessions::atSeat(uid_t user) const {
    if (user == 0) return true;
    char** sessions = nullptr;
    if (::sd_seat_get_sessions(seat, &sessions, nullptr, nullptr) < 0 || !sessions) return false;
    bool found = false;
    for (char** session = sessions; *session; ++session) {
        uid_t owner = 0;
        found = found || (::sd_session_get_uid(*session, &owner) >= 0 && owner == user && isOpen(*session));
        std::free(*session);
    }
    std::free(static_cast<void*>(sessions));
    return found;
}

void Sessions::readRecords() {
    char* session = nullptr;
    uid_t user = 0;
    const int result = ::sd_seat_get_active(seat, &session, &user);
    const std::string name = result >= 0 && session && isOpen(session) ? session : "";
    std::free(session);
    m_user = name.empty() ? std::nullopt : std::optional(user);
    if (name == m_session) return;
    m_session = name;
    m_sessionPath.clear();
    askWhetherLocked();
}

void Sessions::askWhetherLocked() {
    m_question = ::sd_bus_slot_unref(m_question);
    m_lock = Lock::open;
    if (m_session.empty()) return;
    if (m_sessionPath.empty()) {
        char* path = nullptr;
        if (::sd_bus_path_encode("/org/freedesktop/login1/session", m_session.c_str(), &path) >= 0)
            m_sessionPath = path;
        std::free(path);
    }
    connect();
    if (!m_bus) return;

    ::sd_bus_message* message = nullptr;
    int result = ::sd_bus_message_new_method_call(m_bus, &message, login, m_sessionPath.c_str(),
                                                  "org.freedesktop.DBus.Properties", "Get");
    if (result >= 0) result = ::sd_bus_message_append(message, "ss", sessionInterface, lockedHint);
    if (result >= 0) result = ::sd_bus_call_async(m_bus, &m_question, message, lockAnswered, this, answerTime);
    ::sd_bus_message_unref(message);
    if (result < 0) return services::log("asking whether the session is locked: %s", std::strerror(-result));
    m_lock = Lock::asked;
}

// The connection is made in the background; what is sent meanwhile waits for it.
void Sessions::connect() {
    if (m_bus && ::sd_bus_is_open(m_bus) > 0) return;
    disconnect();
    int result = ::sd_bus_open_system(&m_bus);
    if (result >= 0) result = ::sd_bus_attach_event(m_bus, m_loop.raw(), 0);
    if (result >= 0)
        result = ::sd_bus_add_match_async(m_bus, &m_signals,
                                          "type='signal',sender='org.freedesktop.login1',"
                                          "interface='org.freedesktop.DBus.Properties',member='PropertiesChanged',"
                                          "arg0='org.freedesktop.login1.Session'",
                                          propertiesChanged, nullptr, this);
    if (result >= 0) return;
    services::log("connecting to the system bus: %s", std::strerror(-result));
    disconnect();
}

void Sessions::disconnect() {
    m_question = ::sd_bus_slot_unref(m_question);
    m_signals = ::sd_bus_slot_unref(m_signals);
    ::sd_bus_close(m_bus);
    m_bus = ::sd_bus_unref(m_bus);
}

void Sessions::setLock(Lock lock) {
    if (m_lock == lock) return;
    m_lock = lock;
    m_changed();
}

int Sessions::lockAnswered(::sd_bus_message* message, void* self, ::sd_bus_error*) {
    auto& sessions = *static_cast<Sessions*>(self);
    sessions.m_question = ::sd_bus_slot_unref(sessions.m_question);
    int locked = 0;
    if (const ::sd_bus_error* error = ::sd_bus_message_get_error(message))
        services::log("asking whether the session is locked: %s", error->message ? error->message : error->name);
    else if (const int result = ::sd_bus_message_read(message, "v", "b", &locked); result < 0)
        services::log("asking whether the session is locked: %s", std::strerror(-result));
    sessions.setLock(locked ? Lock::locked : Lock::open);
    return 0;
}

// Of any session; only the one in front matters.
int Sessions::propertiesChanged(::sd_bus_message* message, void* self, ::sd_bus_error*) {
    auto& sessions = *static_cast<Sessions*>(self);
    const char* path = ::sd_bus_message_get_path(message);
    if (!path || sessions.m_sessionPath != path) return 0;
    const char* interface = nullptr;
    int locked = -1;
    if (::sd_bus_message_read(message, "s", &interface) < 0 ||
        ::sd_bus_message_enter_container(message, 'a', "{sv}") < 0)
        return 0;
    while (::sd_bus_message_enter_container(message, 'e', "sv") > 0) {
        const char* name = nullptr;
        if (::sd_bus_message_read(message, "s", &name) < 0) return 0;
        const int result = std::strcmp(name, lockedHint) == 0 ? ::sd_bus_message_read(message, "v", "b", &locked)
                                                              : ::sd_bus_message_skip(message, "v");
        if (result < 0 || ::sd_bus_message_exit_container(message) < 0) return 0;
    }
    if (locked >= 0) {
        sessions.m_question = ::sd_bus_slot_unref(sessions.m_question); // its answer may be older
        sessions.setLock(locked ? Lock::locked : Lock::open);
    }
    return 0;
}

} // namespace jvninputd
