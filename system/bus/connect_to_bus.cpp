#include "system/bus/connect_to_bus.h"

#include "system/bus/address_entries.h"
#include "system/bus/bus_address.h"
#include "system/files/environment.h"
#include "system/socket/address.h"

#include <cerrno>
#include <cstddef>
#include <cstring>
#include <sys/socket.h>
#include <sys/un.h>

namespace {

struct SocketName {
    sockaddr_un address{};
    socklen_t length = 0; // 0: no such socket can be
};

SocketName socketName(DBusAddressEntry* entry) {
    using seat::AddressEntries;
    std::string path = AddressEntries::value(entry, "path");
    if (path.empty() && AddressEntries::value(entry, "runtime") == "yes")
        path = seat::environment("XDG_RUNTIME_DIR") + "/bus";
    const bool isAbstract = path.empty();
    if (isAbstract) path = '\0' + AddressEntries::value(entry, "abstract");
    SocketName name;
    name.address.sun_family = AF_UNIX;
    if (path.size() <= (isAbstract ? 1 : 0) || path.size() >= sizeof name.address.sun_path) return {};
    std::memcpy(name.address.sun_path, path.data(), path.size());
    name.length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + path.size() + (isAbstract ? 0 : 1));
    return name;
}

} // namespace

seat::Descriptor seat::connectToBus(const std::string& addresses, std::string& problem) {
    problem = "not the address of a bus on this computer";
    if (!isPlainBusAddress(addresses)) return Descriptor();
    for (DBusAddressEntry* const entry : AddressEntries(addresses)) {
        const SocketName name = socketName(entry);
        if (name.length == 0) continue;
        Descriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
        if (socket && ::connect(socket.get(), reinterpret_cast<const sockaddr*>(&name.address), name.length) == 0) {
            if (peerIsTrusted(socket.get())) return socket;
            problem = "it belongs to another user";
            continue;
        }
        problem = errno == EAGAIN ? "it takes no more connections" : std::strerror(errno);
    }
    return Descriptor();
}
