#include "system/bus/BusRelay.h"

#include "platform/log.h"
#include "system/bus/RelayedConnection.h"
#include "system/bus/connect_to_bus.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstddef>
#include <dbus/dbus.h>
#include <pthread.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <sys/un.h>

namespace {

constexpr std::size_t mostConnections = 8; // the toolkit has one to each bus

bool isOurselves(int descriptor) {
    ucred peer{};
    socklen_t length = sizeof peer;
    return ::getsockopt(descriptor, SOL_SOCKET, SO_PEERCRED, &peer, &length) == 0 && peer.pid == ::getpid();
}

} // namespace

seat::BusRelay::BusRelay(std::string busAddress, RelayTimeouts timeouts)
    : m_timeouts(timeouts), m_session(openDoor("session bus", std::move(busAddress))),
      m_accessibility(openDoor("accessibility bus", {})), m_stop(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}

void seat::BusRelay::start() {
    ::dbus_threads_init_default();
    // Signals are the main thread's.
    sigset_t all;
    sigset_t before;
    ::sigfillset(&all);
    ::pthread_sigmask(SIG_SETMASK, &all, &before);
    m_thread = std::thread([this] { run(); });
    ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

seat::BusRelay::~BusRelay() {
    ::eventfd_write(m_stop.get(), 1);
    if (m_thread.joinable()) m_thread.join();
}

// A name that the system chooses, in no folder: nothing is left behind, however the process ends.
seat::BusRelay::Door seat::BusRelay::openDoor(const char* name, std::string bus) {
    Descriptor listener(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    sockaddr_un own{};
    own.sun_family = AF_UNIX;
    socklen_t length = sizeof own;
    if (!listener || ::bind(listener.get(), reinterpret_cast<const sockaddr*>(&own), sizeof own.sun_family) != 0 ||
        ::listen(listener.get(), SOMAXCONN) != 0 ||
        ::getsockname(listener.get(), reinterpret_cast<sockaddr*>(&own), &length) != 0)
        return {Descriptor(), {}, {}, name};
    const std::string place(own.sun_path + 1, length - offsetof(sockaddr_un, sun_path) - 1);
    return {std::move(listener), "unix:abstract=" + place, std::move(bus), name};
}

std::string seat::BusRelay::doorToAccessibility(const std::string& busAddress) {
    if (m_accessibility.address.empty()) return busAddress;
    const std::lock_guard lock(m_mutex);
    m_accessibility.bus = busAddress;
    return m_accessibility.address;
}

void seat::BusRelay::run() {
    using Clock = RelayedConnection::Clock;
    std::string problem; // is said when the toolkit comes and it is still so
    if (auto prepared = connect(m_session, problem)) {
        m_prepared = prepared.get();
        m_connections.push_back(std::move(prepared));
    }
    std::vector<pollfd> entries;
    for (;;) {
        entries = {{m_stop.get(), POLLIN, 0},
                   {m_session.listener.get(), POLLIN, 0},
                   {m_accessibility.listener.get(), POLLIN, 0}};
        std::optional<Clock::time_point> deadline;
        for (const auto& connection : m_connections) {
            connection->addEntries(entries);
            const auto its = connection->deadline();
            if (its && (!deadline || *its < *deadline)) deadline = its;
        }
        int timeout = -1;
        if (deadline) {
            const auto left = std::chrono::ceil<std::chrono::milliseconds>(*deadline - Clock::now()).count();
            timeout = static_cast<int>(std::max<decltype(left)>(left, 0));
        }
        ::poll(entries.data(), entries.size(), timeout);
        if (entries[0].revents != 0) return;
        letIn(m_session);
        letIn(m_accessibility);
        std::erase_if(m_connections, [this, now = Clock::now()](const auto& connection) {
            if (connection->serve(now)) return false;
            if (connection.get() == m_prepared) m_prepared = nullptr;
            return true;
        });
    }
}

void seat::BusRelay::letIn(Door& door) {
    while (door.listener) {
        Descriptor toolkit(::accept4(door.listener.get(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
        if (!toolkit) return;
        if (!isOurselves(toolkit.get()) || m_connections.size() >= mostConnections) continue;
        auto* const prepared = &door == &m_session ? std::exchange(m_prepared, nullptr) : nullptr;
        // Its bus may have gone since it was served last.
        if (prepared && prepared->serve(RelayedConnection::Clock::now())) {
            prepared->attach(std::move(toolkit));
            continue;
        }
        std::string problem;
        if (auto connection = connect(door, problem)) {
            connection->attach(std::move(toolkit));
            m_connections.push_back(std::move(connection));
        } else {
            NSLog("accessibility: no %s: %s", door.name, problem.c_str());
        }
    }
}

std::unique_ptr<seat::RelayedConnection> seat::BusRelay::connect(Door& door, std::string& problem) {
    std::string address;
    {
        const std::lock_guard lock(m_mutex);
        address = door.bus;
    }
    Descriptor bus = connectToBus(address, problem);
    if (!bus) return nullptr;
    // Of accessibility the toolkit tells others by its name there.
    const auto withoutGreeting = &door == &m_session ? RelayedConnection::WithoutGreeting::HasNameOfOurs
                                                     : RelayedConnection::WithoutGreeting::IsRefused;
    return std::make_unique<RelayedConnection>(
        std::move(bus), door.name, m_timeouts, withoutGreeting,
        [this](const std::string& found) { return doorToAccessibility(found); }, m_isAccessible);
}
