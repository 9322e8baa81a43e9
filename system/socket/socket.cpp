#include "platform/socket.h"

#include "platform/log.h"
#include "system/files/root.h"
#include "system/socket/address.h"
#include "system/socket/connection_listener.h"
#include "system/socket/receive.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <string>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

namespace {

int failed(int errorNumber) {
    errno = errorNumber;
    return -1;
}

// A connect that does not wait: where it would have to (the peer's queue is full), it fails.
int connectAtOnce(int descriptor, const std::string& path) {
    const int flags = ::fcntl(descriptor, F_GETFL);
    if (flags == -1 || ::fcntl(descriptor, F_SETFL, flags | O_NONBLOCK) == -1) return errno;
    const int error = seat::connectToPath(descriptor, path);
    ::fcntl(descriptor, F_SETFL, flags);
    return error;
}

const char* reason(int errorNumber) {
    switch (errorNumber) {
    case EAGAIN:
        return "its queue of connections is full";
    case EPERM:
        return "it belongs to another user";
    default:
        return std::strerror(errorNumber);
    }
}

} // namespace

int platform::socket(int domain, int type, int protocol) {
    if (domain != AF_UNIX_FAMILY || type != SOCK_STREAM_TYPE || protocol != 0) return failed(EPROTONOSUPPORT);
    return ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
}

int platform::connect(int descriptor, const sockaddr_un* address, std::size_t size) {
    if (!address || size != sizeof *address || address->sun_family != AF_UNIX_FAMILY) return failed(EINVAL);
    const std::string path(address->sun_path, ::strnlen(address->sun_path, sizeof address->sun_path));
    if (path.empty()) return failed(ENOENT);

    int error = connectAtOnce(descriptor, seat::hostPath(path));
    if (error == 0 && !seat::peerIsTrusted(descriptor)) {
        ::shutdown(descriptor, SHUT_RDWR); // what the caller sends in spite of the failure goes nowhere
        error = EPERM;
    }
    if (error == 0) {
        seat::tellOfConnection(descriptor, path);
        return 0;
    }
    NSLog("connect %s: %s", path.c_str(), reason(error));
    return failed(error);
}

std::ptrdiff_t platform::send(int descriptor, const void* bytes, std::size_t length, int) {
    return ::send(descriptor, bytes, length, MSG_NOSIGNAL | MSG_DONTWAIT);
}

std::ptrdiff_t platform::recv(int descriptor, void* bytes, std::size_t length, int flags) {
    if (flags & MSG_WAITALL_FLAG) {
        const auto received = seat::receiveAll(descriptor, bytes, length);
        const int error = errno;
        if (received.isLate) seat::tellOfReply(descriptor, seat::ConnectionEvent::Silent);
        if (received.count == static_cast<std::ptrdiff_t>(length))
            seat::tellOfReply(descriptor, seat::ConnectionEvent::Answered);
        errno = error;
        return received.count;
    }
    for (;;) {
        const std::ptrdiff_t result = ::recv(descriptor, bytes, length, 0);
        if (result != -1 || errno != EINTR) return result;
    }
}

int platform::setsockopt(int descriptor, int level, int option, const void* value, std::size_t size) {
    if (level != SOL_SOCKET_LEVEL || option != SO_RCVTIMEO_OPTION) return failed(ENOPROTOOPT);
    timeval time;
    if (!value || size != sizeof time) return failed(EINVAL);
    std::memcpy(&time, value, sizeof time);
    const ::timeval translated{time.tv_sec, time.tv_usec};
    return ::setsockopt(descriptor, SOL_SOCKET, SO_RCVTIMEO, &translated, sizeof translated);
}

int platform::close(int descriptor) {
    seat::forgetConnection(descriptor); // before another can have its number
    return ::close(descriptor);
}
