#include "system/bus/session_bus_address.h"

#include "system/bus/address_entries.h"
#include "system/bus/bus_address.h"
#include "system/files/environment.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

using namespace seat;
using Clock = std::chrono::steady_clock;

constexpr const char* addressVariable = "DBUS_SESSION_BUS_ADDRESS";

struct SocketName {
    sockaddr_un address{};
    socklen_t length = 0; // 0: no such socket can be
};

SocketName socketName(DBusAddressEntry* entry) {
    std::string path = AddressEntries::value(entry, "path");
    if (path.empty() && AddressEntries::value(entry, "runtime") == "yes")
        path = environment("XDG_RUNTIME_DIR") + "/bus";
    const bool isAbstract = path.empty();
    if (isAbstract) path = '\0' + AddressEntries::value(entry, "abstract");
    SocketName name;
    name.address.sun_family = AF_UNIX;
    if (path.size() <= (isAbstract ? 1 : 0) || path.size() >= sizeof name.address.sun_path) return {};
    std::memcpy(name.address.sun_path, path.data(), path.size());
    name.length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + path.size() + (isAbstract ? 0 : 1));
    return name;
}

class Conversation {
public:
    Conversation(int descriptor, Clock::time_point deadline) : m_descriptor(descriptor), m_deadline(deadline) {}
    ~Conversation() { close(m_descriptor); }
    Conversation(const Conversation&) = delete;
    Conversation& operator=(const Conversation&) = delete;

    bool say(std::string_view text) {
        while (!text.empty()) {
            const ssize_t sent = send(m_descriptor, text.data(), text.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
            if (sent > 0)
                text.remove_prefix(static_cast<std::size_t>(sent));
            else if (errno == EAGAIN ? !wait(POLLOUT) : errno != EINTR)
                return false;
        }
        return true;
    }

    // Bytes as they come; empty at the end of the stream, of the time, or on failure.
    std::string hear() {
        char bytes[512];
        for (;;) {
            const ssize_t got = recv(m_descriptor, bytes, sizeof bytes, MSG_DONTWAIT);
            if (got > 0) return std::string(bytes, static_cast<std::size_t>(got));
            if (got == 0 || (errno == EAGAIN ? !wait(POLLIN) : errno != EINTR)) return {};
        }
    }

    bool isPatient() const { return Clock::now() < m_deadline; }

private:
    bool wait(short events) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(m_deadline - Clock::now()).count();
        pollfd entry{m_descriptor, events, 0};
        return left > 0 && (poll(&entry, 1, static_cast<int>(left)) > 0 || errno == EINTR);
    }

    int m_descriptor;
    Clock::time_point m_deadline;
};

// The method call Hello to the bus itself.
std::string helloMessage() {
    std::string message("l\1\0\1\0\0\0\0\1\0\0\0\0\0\0\0", 16); // little endian, call, version 1, no body, serial 1
    const auto field = [&message](char code, char type, std::string_view text) {
        message.append((8 - message.size() % 8) % 8, '\0');
        message += {code, '\1', type, '\0', static_cast<char>(text.size()), '\0', '\0', '\0'};
        message.append(text) += '\0';
    };
    field(1, 'o', "/org/freedesktop/DBus");
    field(6, 's', "org.freedesktop.DBus");
    field(2, 's', "org.freedesktop.DBus");
    field(3, 's', "Hello");
    message[12] = static_cast<char>(message.size() - 16);
    message.append((8 - message.size() % 8) % 8, '\0');
    return message;
}

std::string identity() {
    static constexpr char digits[] = "0123456789abcdef";
    std::string text;
    for (const char c : std::to_string(geteuid())) (text += digits[c >> 4]) += digits[c & 15];
    return text;
}

BusState probeSocket(const SocketName& name, Clock::time_point deadline) {
    if (name.length == 0) return BusState::Absent;
    const int descriptor = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (descriptor == -1) return BusState::Absent;
    Conversation bus(descriptor, deadline);
    if (connect(descriptor, reinterpret_cast<const sockaddr*>(&name.address), name.length) != 0)
        return errno == EAGAIN ? BusState::Silent : BusState::Absent; // a full backlog: nobody takes calls

    const auto failed = [&bus] { return bus.isPatient() ? BusState::Absent : BusState::Silent; };
    if (!bus.say(std::string_view("\0", 1)) || !bus.say("AUTH EXTERNAL " + identity() + "\r\n")) return failed();
    std::string answer;
    while (answer.find("\r\n") == std::string::npos) {
        const auto more = bus.hear();
        if (more.empty()) return failed();
        answer += more;
    }
    if (!answer.starts_with("OK ")) return BusState::Absent;
    if (!bus.say("BEGIN\r\n" + helloMessage()) || bus.hear().empty()) return failed();
    return BusState::Answers;
}

std::string& knownAddress() {
    static auto* const address = new std::string;
    return *address;
}

std::string addressInRuntimeFolder() {
    const std::string folder = environment("XDG_RUNTIME_DIR");
    struct stat information {};
    if (folder.empty() || stat((folder + "/bus").c_str(), &information) != 0 || !S_ISSOCK(information.st_mode))
        return {};
    return addressOfSocketFile(folder + "/bus");
}

} // namespace

BusState seat::probeBus(const std::string& addresses, std::chrono::milliseconds timeout) {
    const auto deadline = Clock::now() + timeout;
    BusState best = BusState::Absent;
    if (!isPlainBusAddress(addresses)) return best;
    for (DBusAddressEntry* const entry : AddressEntries(addresses)) {
        const BusState state = probeSocket(socketName(entry), deadline);
        if (state != BusState::Absent) best = state;
        if (best == BusState::Answers) break;
    }
    return best;
}

BusState seat::settleSessionBus(std::chrono::milliseconds timeout) {
    auto& address = knownAddress();
    address = environment(addressVariable);
    if (address.empty()) address = addressInRuntimeFolder();
    const BusState state = probeBus(address, timeout);
    setenv(addressVariable, state == BusState::Answers ? address.c_str() : nobodysBusAddress, 1);
    return state;
}

const std::string& seat::sessionBusAddress() { return knownAddress(); }
