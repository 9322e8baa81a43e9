#include "daemonlink/control_socket.h"

#include "daemonlink/ControlConnection.h"
#include "platform/log.h"
#include "platform/socket.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace {

constexpr char controlSocketPath[] = "/Library/Caches/jvncontrol.sock";

constexpr platform::sockaddr_un addressOf(const char* path, std::size_t length) {
    platform::sockaddr_un address;
    address.sun_len = static_cast<std::uint8_t>(length);
    address.sun_family = platform::AF_UNIX_FAMILY;
    std::copy_n(path, length, address.sun_path);
    return address;
}

constexpr platform::sockaddr_un controlSocketAddress = addressOf(controlSocketPath, sizeof controlSocketPath);
static_assert(controlSocketAddress.sun_len == 32 && controlSocketAddress.sun_family == 1);

int connectTo(const platform::sockaddr_un& address) {
    const int descriptor = platform::socket(platform::AF_UNIX_FAMILY, platform::SOCK_STREAM_TYPE, 0);
    if (descriptor == -1) {
        NSLog("making a socket for %s: %s", address.sun_path, std::strerror(errno));
        return -1;
    }
    // The whole record counts as the address, whatever its length byte says.
    if (platform::connect(descriptor, &address, sizeof address) == -1) {
        platform::close(descriptor);
        return -1;
    }
    return descriptor;
}

} // namespace

int JVNConnecToUNIXSocket(const char* path, std::size_t length) {
    if (length > sizeof platform::sockaddr_un::sun_path) std::abort();
    return connectTo(addressOf(path, length));
}

int JVNConnectToControlSocket() { return connectTo(controlSocketAddress); }

ControlConnection ControlConnection::open() { return ControlConnection(connectTo(controlSocketAddress)); }

ControlConnection& ControlConnection::operator=(ControlConnection&& other) noexcept {
    if (this != &other) {
        close();
        m_descriptor = other.release();
    }
    return *this;
}

void ControlConnection::close() {
    if (m_descriptor != -1) platform::close(release());
}
