#include "services/jvninput/Connection.h"

#include "services/jvninput/state_text.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <sys/socket.h>
#include <sys/time.h>
#include <sys/un.h>

namespace jvninput {

void Connection::setTimeout(std::chrono::milliseconds timeout) const {
    const ::timeval time{timeout.count() / 1000, timeout.count() % 1000 * 1000};
    for (const int direction : {SO_RCVTIMEO, SO_SNDTIMEO})
        ::setsockopt(m_socket.get(), SOL_SOCKET, direction, &time, sizeof time);
}

bool Connection::open(const std::string& path, input::Role role, std::string& complaint,
                      std::chrono::milliseconds timeout) {
    ::sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path) {
        complaint = path + ": " + std::strerror(ENAMETOOLONG);
        return false;
    }
    std::memcpy(address.sun_path, path.c_str(), path.size());
    m_socket.reset(::socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0));
    if (m_socket) setTimeout(timeout);
    if (!m_socket || ::connect(m_socket.get(), reinterpret_cast<const ::sockaddr*>(&address), sizeof address) < 0) {
        complaint = "connecting to jvninputd at " + path + ": " + std::strerror(errno);
        return false;
    }
    auto hello = input::makeMessage<input::Hello>();
    hello.role = role;
    // When it does not arrive, receive() tells why.
    ::send(m_socket.get(), &hello, sizeof hello, MSG_NOSIGNAL);
    return true;
}

void Connection::send(const input::Settings& settings) const {
    ::send(m_socket.get(), &settings, sizeof settings, MSG_NOSIGNAL);
}

bool Connection::receive(std::string& complaint) {
    std::array<char, input::maximumMessageSize> buffer;
    ssize_t size = 0;
    do size = ::recv(m_socket.get(), buffer.data(), buffer.size(), 0);
    while (size < 0 && (errno == EINTR || errno == ECONNRESET)); // the reset comes once, before the reason
    if (size < 0 && errno == EAGAIN) {
        complaint = "jvninputd does not answer";
        return false;
    }
    if (size <= 0) {
        if (complaint.empty()) complaint = "jvninputd has ended the connection";
        return false;
    }
    const auto length = static_cast<std::size_t>(size);
    // The reason of a refusal can be read whatever the version: it is what tells of it.
    if (const auto header = input::headerOf(buffer.data(), length);
        header && header->type == input::MessageType::refused && length == sizeof(input::Refused)) {
        input::Refused refused;
        std::memcpy(&refused, buffer.data(), sizeof refused);
        complaint = "jvninputd refuses: " + refusalText(refused.reason);
        return false;
    }
    const bool wasComplete = complete();
    if (const auto state = input::messageFrom<input::State>(buffer.data(), length)) m_state = state;
    if (const auto keyboards = input::messageFrom<input::Keyboards>(buffer.data(), length)) m_keyboards = keyboards;
    if (!wasComplete && complete()) setTimeout(std::chrono::milliseconds(0));
    return true;
}

} // namespace jvninput
