#pragma once

#include "services/common/EventLoop.h"
#include "services/jvnd/ControlConnection.h"
#include "system/files/Descriptor.h"

#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <vector>

namespace jvnd {

// Takes callers from the control socket: of this process's user and root only, and so many at once.
class ControlServer {
public:
    static constexpr std::size_t mostConnections = 16;

    // The references outlive this object.
    ControlServer(services::EventLoop& loop, CommandHandler& handler) : m_loop(loop), m_handler(handler) {}

    // A socket that listens; it stays the caller's and is watched from now on.
    void listen(int listener);

    std::size_t connectionCount() const { return m_connections.size(); }
    // Called whenever the last connection has ended, and when the first has come.
    void onBusyChanged(std::function<void()> changed) { m_busyChanged = std::move(changed); }

private:
    struct Listener {
        int descriptor;
        services::EventLoop::Source ready;
    };

    void watch(Listener& listener);
    void acceptFrom(Listener& listener);
    void adopt(seat::Descriptor descriptor);
    void ended(std::uint64_t number);

    services::EventLoop& m_loop;
    CommandHandler& m_handler;
    std::function<void()> m_busyChanged;
    std::vector<std::unique_ptr<Listener>> m_listeners;
    std::map<std::uint64_t, std::unique_ptr<ControlConnection>> m_connections;
    std::uint64_t m_lastNumber = 0;
};

} // namespace jvnd
