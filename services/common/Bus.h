#pragma once

#include "services/common/EventLoop.h"
#include "services/common/Message.h"

#include <functional>
#include <list>
#include <memory>
#include <string>

namespace services {

// A connection to a message bus that comes back by itself: a bus that is absent, refuses, dies or is restarted is tried
// again, at once when its socket appears. An environment that names none, or one that is no socket of this computer's,
// is settled: nothing is tried. Nothing waits. One thread.
class Bus {
public:
    enum class Which {
        System, // DBUS_SYSTEM_BUS_ADDRESS, else the system's
        Session // DBUS_SESSION_BUS_ADDRESS, else the one in the run-time folder
    };
    // `up` is called each time the bus has taken us, `down` when it is gone again; neither before the constructor has
    // returned. All registrations and calls of a connection end with it; unfinished calls fail before `down`.
    Bus(EventLoop& loop, Which which, std::function<void()> up, std::function<void()> down = {});
    ~Bus();
    Bus(const Bus&) = delete;
    Bus& operator=(const Bus&) = delete;

    bool isUp() const { return m_isUp; }
    // nullptr while there is no connection at all.
    ::sd_bus* raw() const { return m_bus; }

    struct Reply {
        ::sd_bus_message* message = nullptr; // nullptr when the call failed
        std::string error;                   // the error's name; empty: it worked
        std::string text;                    // what it says for people
    };
    using Replied = std::function<void(const Reply&)>;

    // nullptr when it cannot be made, for example with an invalid path.
    Message method(const char* destination, const char* path, const char* interface, const char* member) const;
    // Sends it. `replied` is called once, unless the handle is destroyed first, later than call() returns; without a
    // time limit, since callers have timers. A nil message, or no connection, fails the same way.
    [[nodiscard]] EventLoop::Source call(Message message, Replied replied);
    // Sends it, whatever comes of it; it counts for whenQuiet().
    void send(Message message);
    // Hears signals as long as the slot lives. nullptr, logged, when that is not possible.
    [[nodiscard]] Slot match(const std::string& rule, ::sd_bus_message_handler_t handler, void* data);

    // `done` is called, once, when all calls are answered whose handle lives, or that were sent without one.
    void whenQuiet(std::function<void()> done);

private:
    struct Pending;
    class Call;
    using PendingList = std::list<std::shared_ptr<Pending>>;

    void open();
    void lost(const std::string& reason);
    void reply(Pending& pending, const Reply& reply);
    void checkQuiet();
    static int connected(::sd_bus_message* message, void* self, ::sd_bus_error*);
    static int disconnected(::sd_bus_message* message, void* self, ::sd_bus_error*);
    static int replied(::sd_bus_message* message, void* pending, ::sd_bus_error*);

    EventLoop& m_loop;
    Which m_which;
    std::function<void()> m_up;
    std::function<void()> m_down;
    ::sd_bus* m_bus = nullptr;
    Slot m_connectedSlot;
    Slot m_disconnectedSlot;
    bool m_isUp = false;
    std::chrono::seconds m_retryDelay;
    PendingList m_pending;
    std::function<void()> m_quiet;
    EventLoop::Source m_retry;
    EventLoop::Source m_tellQuiet;
};

} // namespace services
