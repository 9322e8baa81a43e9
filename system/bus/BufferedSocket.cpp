#include "system/bus/BufferedSocket.h"

#include <cerrno>
#include <sys/socket.h>

bool seat::BufferedSocket::receive() {
    constexpr int mostAtOnce = 16;
    char bytes[4096];
    for (int i = 0; i < mostAtOnce; ++i) {
        const ssize_t size = ::recv(m_descriptor.get(), bytes, sizeof bytes, MSG_DONTWAIT);
        if (size == 0) return false;
        if (size < 0) return errno == EAGAIN || errno == EINTR;
        received.append(bytes, static_cast<std::size_t>(size));
        if (static_cast<std::size_t>(size) < sizeof bytes) return true;
    }
    return true;
}

bool seat::BufferedSocket::send() {
    while (!toSend.empty()) {
        const ssize_t size = ::send(m_descriptor.get(), toSend.data(), toSend.size(), MSG_DONTWAIT | MSG_NOSIGNAL);
        if (size < 0) return errno == EAGAIN || errno == EINTR;
        toSend.erase(0, static_cast<std::size_t>(size));
    }
    return true;
}
