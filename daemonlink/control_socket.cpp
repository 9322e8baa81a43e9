#include "daemonlink/control_socket.h"

#include "daemonlink/ControlConnection.h"
#include "platform/socket.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace {

constexpr char controlSocketPath[] = "/Library/Caches/jvncontrol.sock";
static_assert(sizeof controlSocketPath == 32);

} // namespace

int JVNConnecToUNIXSocket(const char* path, std::size_t length) {
    platform::sockaddr_un address;
    if (length > sizeof address.sun_path) std::abort();
    address.sun_len = static_cast<std::uint8_t>(length);
    address.sun_family = platform::AF_UNIX_FAMILY;
    if (length > 0) std::memcpy(address.sun_path, path, length);

    const int descriptor = platform::socket(platform::AF_UNIX_FAMILY, platform::SOCK_STREAM_TYPE, 0);
    if (descriptor == -1) return -1;
    // The whole record counts as the address, whatever its length byte says.
    if (platform::connect(descriptor, &address, sizeof address) == -1) {
        platform::close(descriptor);
        return -1;
    }
    return descriptor;
}

int JVNConnectToControlSocket() { return JVNConnecToUNIXSocket(controlSocketPath, sizeof controlSocketPath); }

ControlConnection ControlConnection::open() {
    return ControlConnection(JVNConnecToUNIXSocket(controlSocketPath, sizeof controlSocketPath));
}

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
