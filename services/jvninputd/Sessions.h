#pragma once

#include "services/common/EventLoop.h"

#include <array>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <sys/types.h>
#include <systemd/sd-bus.h>
#include <systemd/sd-login.h>

namespace jvninputd {

// Who sits at the seat, by logind's records, and whether that session is locked, by what logind says on the system bus.
// Without logind nobody does. Without the bus, or when it does not answer, no session is locked.
class Sessions {
public:
    Sessions(services::EventLoop& loop, std::function<void()> changed);
    ~Sessions();
    Sessions(const Sessions&) = delete;
    Sessions& operator=(const Sessions&) = delete;

    // Whether the user has a session at the seat, in front or not, locked or not; root always has.
    bool atSeat(uid_t user) const;
    // Whose session is in front.
    std::optional<uid_t> inFront() const { return m_user; }
    // Whether that session is locked; also while that is not known yet.
    bool locked() const { return m_lock != Lock::open; }

private:
    enum class Lock { open, locked, asked };

    void watchRecords();
    void readRecords();
    void connect();
    void disconnect();
    void askWhetherLocked();
    void setLock(Lock lock);
    static int lockAnswered(::sd_bus_message* message, void* self, ::sd_bus_error* error);
    static int propertiesChanged(::sd_bus_message* message, void* self, ::sd_bus_error* error);

    services::EventLoop& m_loop;
    std::function<void()> m_changed;
    struct Records {
        const char* kind;
        ::sd_login_monitor* monitor = nullptr;
        services::EventLoop::Source changed;
    };
    std::array<Records, 2> m_records{{{"seat", nullptr, nullptr}, {"session", nullptr, nullptr}}};
    std::optional<uid_t> m_user;
    std::string m_session;
    std::string m_sessionPath;
    Lock m_lock = Lock::open;
    ::sd_bus* m_bus = nullptr;
    ::sd_bus_slot* m_signals = nullptr;
    ::sd_bus_slot* m_question = nullptr;
};

} // namespace jvninputd
