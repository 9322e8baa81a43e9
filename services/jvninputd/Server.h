#pragma once

#include "services/common/EventLoop.h"
#include "services/jvninputd/Client.h"

#include "system/files/Descriptor.h"

#include <functional>
#include <list>
#include <memory>
#include <string>

namespace jvninputd {

// Who is connected. It admits and refuses by user and role, and keeps the numbers small whatever is tried.
class Server {
public:
    struct Callbacks {
        std::function<bool(uid_t)> permitted;
        std::function<void(Client&)> joined;   // its role is known; what it is shown now comes after that
        std::function<void(Client&)> settings; // it has sent new ones
        std::function<void(Client&)> light;    // likewise
        std::function<void(Client&)> left;     // it is still there, and ended
        std::function<void(bool)> empty;       // the last one has gone, or the first one has come
    };
    // Takes connections from a listening socket that does not block.
    Server(services::EventLoop& loop, seat::Descriptor listener, Callbacks callbacks);

    // Refuses clients of users that are no longer permitted.
    void checkPermissions();

    const std::list<std::unique_ptr<Client>>& clients() const { return m_clients; }
    // The one of this user in this role; nullptr when there is none.
    Client* find(uid_t user, input::Role role) const;

private:
    void accept();
    void admit(seat::Descriptor socket, uid_t user);
    std::optional<input::RefusalReason> hello(Client& client, input::Role role);
    void gone(Client& client);
    void removeEnded();

    services::EventLoop& m_loop;
    seat::Descriptor m_listener;
    Callbacks m_callbacks;
    std::list<std::unique_ptr<Client>> m_clients;
    services::EventLoop::Source m_acceptable;
    services::EventLoop::Source m_sweep;
};

} // namespace jvninputd
