#include "system/socket/address.h"

#include "system/files/Descriptor.h"

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <fcntl.h>
#include <optional>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

using namespace seat;

std::optional<::sockaddr_un> shortAddress(const std::string& path) {
    ::sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path) return std::nullopt;
    std::memcpy(address.sun_path, path.data(), path.size());
    return address;
}

std::string pathOfDescriptor(int descriptor) { return "/proc/self/fd/" + std::to_string(descriptor); }

using AddressCall = int (*)(int, const ::sockaddr*, ::socklen_t);

int call(AddressCall function, int descriptor, const std::string& path) {
    const auto address = shortAddress(path);
    if (!address) return ENAMETOOLONG;
    return function(descriptor, reinterpret_cast<const ::sockaddr*>(&*address), sizeof *address) == 0 ? 0 : errno;
}

} // namespace

int seat::connectToPath(int descriptor, const std::string& realPath) {
    if (shortAddress(realPath)) return call(::connect, descriptor, realPath);
    // The link names the socket itself, whatever the length of its own name.
    const Descriptor itself(::open(realPath.c_str(), O_PATH | O_CLOEXEC));
    if (!itself) return errno;
    return call(::connect, descriptor, pathOfDescriptor(itself.get()));
}

int seat::bindToPath(int descriptor, const std::string& realPath) {
    if (shortAddress(realPath)) return call(::bind, descriptor, realPath);
    const auto slash = realPath.rfind('/');
    if (slash == std::string::npos) return ENAMETOOLONG;
    const Descriptor folder(::open(realPath.substr(0, slash + 1).c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    if (!folder) return errno;
    return call(::bind, descriptor, pathOfDescriptor(folder.get()) + realPath.substr(slash));
}

bool seat::peerIsTrusted(int descriptor) {
    ::ucred peer{};
    ::socklen_t size = sizeof peer;
    if (::getsockopt(descriptor, SOL_SOCKET, SO_PEERCRED, &peer, &size) != 0) return false;
    return peer.uid == ::geteuid() || peer.uid == 0;
}
