#pragma once

#include "daemonlink/JVNControlFrame.h"

#include <initializer_list>
#include <optional>
#include <string>
#include <utility>

namespace machine {

// What the page says to the daemon: frames over its control socket, each on a connection of its own.
class ControlClient {
public:
    explicit ControlClient(std::string socketPath) : m_path(std::move(socketPath)) {}

    using Reply = std::pair<unsigned, unsigned>; // its first two words
    // Nothing when nobody listens there, or the connection is closed without a reply.
    std::optional<Reply> ask(JVNControlCommand command, unsigned type = 0,
                             std::initializer_list<int> payload = {}) const;
    // The same for a frame without a reply; false when nobody listens there. Returns when the daemon has dealt with it.
    bool tell(JVNControlCommand command, unsigned type = 0, std::initializer_list<int> payload = {}) const;
    // Somebody answers.
    bool isServed() const;

private:
    int send(JVNControlCommand command, unsigned type, std::initializer_list<int> payload) const;

    std::string m_path;
};

} // namespace machine
