#include "services/jvninputd/listening_socket.h"

#include "services/common/log.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <systemd/sd-daemon.h>
#include <unistd.h>

namespace jvninputd {

namespace {

constexpr int backlog = 128;
// Who may connect is decided by who it is, not by the file.
constexpr mode_t everybody = 0666;

seat::Descriptor failed(const std::string& path) {
    services::log("listening at %s: %s", path.c_str(), std::strerror(errno));
    return seat::Descriptor();
}

} // namespace

seat::Descriptor inheritedSocket() {
    if (::sd_listen_fds(1) < 1) return seat::Descriptor();
    const int descriptor = SD_LISTEN_FDS_START;
    if (::sd_is_socket_unix(descriptor, SOCK_SEQPACKET, 1, nullptr, 0) <= 0) {
        services::log("the inherited descriptor is no socket of ours");
        return seat::Descriptor();
    }
    ::fcntl(descriptor, F_SETFL, ::fcntl(descriptor, F_GETFL) | O_NONBLOCK);
    return seat::Descriptor(descriptor);
}

seat::Descriptor listeningSocket(const std::string& path) {
    ::sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path) {
        errno = ENAMETOOLONG;
        return failed(path);
    }
    std::memcpy(address.sun_path, path.c_str(), path.size());

    seat::Descriptor socket(::socket(AF_UNIX, SOCK_SEQPACKET | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
    if (!socket) return failed(path);
    ::unlink(path.c_str());
    if (::bind(socket.get(), reinterpret_cast<const ::sockaddr*>(&address), sizeof address) < 0 ||
        ::chmod(path.c_str(), everybody) < 0 || ::listen(socket.get(), backlog) < 0)
        return failed(path);
    return socket;
}

} // namespace jvninputd
