#include "tests/machine/support/LoginSession.h"

#include <cstdlib>
#include <fcntl.h>
#include <linux/kd.h>
#include <memory>
#include <stdexcept>
#include <sys/ioctl.h>
#include <systemd/sd-bus.h>
#include <systemd/sd-login.h>
#include <unistd.h>

namespace machine {
namespace {

// Logging in starts a service manager for the user, which takes long under emulation.
constexpr auto kLoginTimeout = 3 * kLongTimeout;
constexpr const char* kManager = "org.freedesktop.login1";
constexpr const char* kSeat = "seat0";

[[noreturn]] void fail(const std::string& what) { throw std::runtime_error(what); }

// The session that the login manager has for that terminal; empty when there is none.
std::string sessionAt(int terminal) {
    std::string found;
    char** sessions = nullptr;
    if (::sd_seat_get_sessions(kSeat, &sessions, nullptr, nullptr) < 0 || !sessions) return found;
    for (char** session = sessions; *session; ++session) {
        unsigned number = 0;
        if (::sd_session_get_vt(*session, &number) >= 0 && number == static_cast<unsigned>(terminal)) found = *session;
        std::free(*session);
    }
    std::free(static_cast<void*>(sessions));
    return found;
}

std::string stateOf(const std::string& session) {
    char* text = nullptr;
    std::string state;
    if (::sd_session_get_state(session.c_str(), &text) >= 0) state = text;
    std::free(text);
    return state;
}

// Calls a method of the login manager's object for that session.
template <typename... Arguments>
void callSession(const std::string& session, const char* method, const char* types, Arguments... arguments) {
    char* path = nullptr;
    ::sd_bus_path_encode("/org/freedesktop/login1/session", session.c_str(), &path);
    sd_bus* bus = nullptr;
    sd_bus_error error{};
    int result = ::sd_bus_open_system(&bus);
    if (result >= 0)
        result = ::sd_bus_call_method(bus, kManager, path, "org.freedesktop.login1.Session", method, &error, nullptr,
                                      types, arguments...);
    const std::string why = error.message ? error.message : "no bus";
    ::sd_bus_error_free(&error);
    ::sd_bus_flush_close_unref(bus);
    std::free(path);
    if (result < 0) fail(std::string(method) + ": " + why);
}

// A graphical desktop takes the keyboard from its terminal, where keys would write or switch terminals.
void takeKeyboard(const std::string& terminal) {
    const int file = ::open(terminal.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    const bool taken = file >= 0 && ::ioctl(file, KDSKBMODE, K_OFF) == 0;
    if (file >= 0) ::close(file);
    if (!taken) fail("the keyboard of " + terminal + " cannot be taken");
}

} // namespace

LoginSession::LoginSession(uid_t user, int terminal)
    : m_unit("joyvane-test-login-" + std::to_string(terminal) + ".service") {
    const auto device = "/dev/tty" + std::to_string(terminal);
    const auto login =
        run({"systemd-run", "--quiet", "--collect", "--unit=" + m_unit, "--uid=" + std::to_string(user),
             "--property=PAMName=joyvane-login", "--property=TTYPath=" + device, "--property=StandardInput=tty-force",
             "--property=DefaultDependencies=no", "sleep", "infinity"},
            kRoot, kLoginTimeout);
    if (login.status != 0) fail("login: " + login.output);
    const auto open = [&] {
        m_id = sessionAt(terminal);
        const auto state = stateOf(m_id);
        return state == "online" || state == "active";
    };
    if (!waitUntil(open, kLoginTimeout)) fail("no session for user " + std::to_string(user));
    takeKeyboard(device);
    bringToFront();
}

LoginSession::~LoginSession() { logOut(); }

LoginSession& LoginSession::ofAnna() {
    static std::unique_ptr<LoginSession> session;
    if (!session || session->m_id.empty()) session = std::make_unique<LoginSession>(kAnna);
    session->unlock();
    session->bringToFront();
    return *session;
}

void LoginSession::bringToFront() {
    callSession(m_id, "Activate", "");
    if (!waitUntil([&] { return ::sd_session_is_active(m_id.c_str()) > 0; }))
        fail("a session does not come to the front");
}

void LoginSession::setLocked(bool locked) { callSession(m_id, "SetLockedHint", "b", static_cast<int>(locked)); }

void LoginSession::logOut() {
    if (m_id.empty()) return;
    run({"systemctl", "stop", m_unit}, kRoot, kLoginTimeout);
    waitUntil([&] { return stateOf(m_id) != "active" && stateOf(m_id) != "online"; }, kLoginTimeout);
    m_id.clear();
}

} // namespace machine
