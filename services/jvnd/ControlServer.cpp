#include "services/jvnd/ControlServer.h"

#include "services/common/log.h"
#include "system/socket/address.h"

#include <cerrno>
#include <cstring>
#include <sys/epoll.h>
#include <sys/socket.h>

namespace jvnd {

namespace {

// How long nobody is taken when the system has no descriptor left for a caller.
constexpr std::chrono::seconds pause{1};

bool isShortage(int error) { return error == EMFILE || error == ENFILE || error == ENOBUFS || error == ENOMEM; }

} // namespace

void ControlServer::listen(int listener) {
    m_listeners.push_back(std::make_unique<Listener>(Listener{listener, nullptr}));
    watch(*m_listeners.back());
}

void ControlServer::watch(Listener& listener) {
    listener.ready.reset();
    // Urgent, as callers are: they wait, and are hundreds of times as quick to serve as anything else that is done
    // here.
    listener.ready =
        m_loop.watchUrgently(listener.descriptor, EPOLLIN, [this, &listener](std::uint32_t) { acceptFrom(listener); });
}

void ControlServer::acceptFrom(Listener& listener) {
    seat::Descriptor caller(::accept4(listener.descriptor, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
    if (!caller) {
        if (!isShortage(errno)) return; // gone before it was taken
        services::log("taking a connection: %s", std::strerror(errno));
        listener.ready = m_loop.after(pause, [this, &listener] { watch(listener); });
        return;
    }
    if (!seat::peerIsTrusted(caller.get()))
        return services::log("control socket: another user's connection is refused");
    if (m_connections.size() >= mostConnections)
        return services::log("control socket: more than %zu connections at once", mostConnections);
    adopt(std::move(caller));
}

void ControlServer::adopt(seat::Descriptor descriptor) {
    const auto number = ++m_lastNumber;
    auto& connection = *(m_connections[number] = std::make_unique<ControlConnection>(
                             m_loop, number, std::move(descriptor), m_handler, [this, number] { ended(number); }));
    if (m_connections.size() == 1 && m_busyChanged) m_busyChanged();
    connection.start();
}

void ControlServer::ended(std::uint64_t number) {
    m_connections.erase(number);
    if (m_connections.empty() && m_busyChanged) m_busyChanged();
}

} // namespace jvnd
