#include "services/jvninputd/Server.h"

#include "services/common/log.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <sys/epoll.h>
#include <sys/socket.h>
#include <utility>

namespace jvninputd {

namespace {

constexpr std::size_t mostConnections = 64;
constexpr long mostOfAUser = 8; // those included that have not said Hello
constexpr long mostObservers = 2;
// So that somebody who connects without end does not keep keys waiting.
constexpr int acceptedAtOnce = 8;

} // namespace

Server::Server(services::EventLoop& loop, seat::Descriptor listener, Callbacks callbacks)
    : m_loop(loop), m_listener(std::move(listener)), m_callbacks(std::move(callbacks)) {
    m_acceptable = m_loop.watch(m_listener.get(), EPOLLIN, [this](std::uint32_t) { accept(); });
}

void Server::accept() {
    for (int i = 0; i < acceptedAtOnce; ++i) {
        seat::Descriptor socket(::accept4(m_listener.get(), nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC));
        if (!socket) {
            if (errno != EAGAIN && errno != EINTR && errno != ECONNABORTED)
                services::log("accepting a connection: %s", std::strerror(errno));
            return;
        }
        ::ucred peer{};
        socklen_t size = sizeof peer;
        if (::getsockopt(socket.get(), SOL_SOCKET, SO_PEERCRED, &peer, &size) < 0) {
            services::log("asking who connects: %s", std::strerror(errno));
            continue;
        }
        admit(std::move(socket), peer.uid);
    }
}

void Server::admit(seat::Descriptor socket, uid_t user) {
    const bool permitted = m_callbacks.permitted(user);
    const auto ofUser = std::ranges::count_if(
        m_clients, [user](const auto& client) { return client->user() == user && !client->ended(); });
    const bool room = m_clients.size() < mostConnections && ofUser < mostOfAUser;
    const bool first = m_clients.empty();
    auto client = std::make_unique<Client>(
        m_loop, std::move(socket), user,
        Client::Callbacks{[this](Client& from, input::Role role) { return hello(from, role); }, m_callbacks.joined,
                          m_callbacks.settings, m_callbacks.light, [this](Client& from) { gone(from); }});
    Client& added = *m_clients.emplace_back(std::move(client));
    if (first) m_callbacks.empty(/*isEmpty=*/false);
    if (!permitted)
        added.refuse(input::RefusalReason::notPermitted);
    else if (!room)
        added.refuse(input::RefusalReason::busy);
}

std::optional<input::RefusalReason> Server::hello(Client& client, input::Role role) {
    const auto inRole = [&](input::Role wanted) {
        return std::ranges::count_if(m_clients, [&](const auto& other) {
            return other->user() == client.user() && !other->ended() && other->role() == wanted;
        });
    };
    const long observers = inRole(input::Role::observe) + inRole(input::Role::tryOut);
    if (role == input::Role::observe ? observers >= mostObservers
                                     : inRole(role) > 0 || (role == input::Role::tryOut && observers >= mostObservers))
        return input::RefusalReason::roleTaken;
    return std::nullopt;
}

Client* Server::find(uid_t user, input::Role role) const {
    const auto found = std::ranges::find_if(m_clients, [&](const auto& client) {
        return client->user() == user && !client->ended() && client->role() == role;
    });
    return found == m_clients.end() ? nullptr : found->get();
}

void Server::checkPermissions() {
    for (const auto& client : m_clients)
        if (!client->ended() && !m_callbacks.permitted(client->user()))
            client->refuse(input::RefusalReason::notPermitted);
}

// Somewhere up the stack the client may still be at work: it is removed when the loop comes round.
void Server::gone(Client& client) {
    if (client.role()) m_callbacks.left(client);
    if (!m_sweep) m_sweep = m_loop.soon([this] { removeEnded(); });
}

void Server::removeEnded() {
    m_sweep.reset();
    std::erase_if(m_clients, [](const auto& client) { return client->ended(); });
    if (m_clients.empty()) m_callbacks.empty(/*isEmpty=*/true);
}

} // namespace jvninputd
