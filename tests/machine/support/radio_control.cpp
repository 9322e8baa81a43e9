#include "tests/machine/support/radio_control.h"

#include "tests/machine/support/wait_until.h"

#include <array>
#include <cstdio>
#include <cstring>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>
#include <vector>

namespace machine {
namespace {

// From the kernel's <net/bluetooth/hci_sock.h> and <net/bluetooth/mgmt.h>, which programs do not get.
constexpr int kHciProtocol = 1;
constexpr std::uint16_t kRawChannel = 0;
constexpr std::uint16_t kControlChannel = 3;
constexpr std::uint16_t kNoRadio = 0xffff;
struct HciAddress {
    sa_family_t family = AF_BLUETOOTH;
    std::uint16_t radio = kNoRadio;
    std::uint16_t channel = kControlChannel;
};
struct Header {
    std::uint16_t code;
    std::uint16_t radio;
    std::uint16_t size;
};
enum Command : std::uint16_t {
    SetDiscoverable = 0x0006,
    SetSimplePairing = 0x000b,
    SetClass = 0x000e,
    Disconnect = 0x0014
};
enum Event : std::uint16_t { CommandComplete = 0x0001, CommandStatus = 0x0002 };

class HciSocket {
public:
    explicit HciSocket(const HciAddress& address)
        : m_socket(::socket(AF_BLUETOOTH, SOCK_RAW | SOCK_CLOEXEC, kHciProtocol)) {
        m_isBound = ::bind(m_socket, reinterpret_cast<const ::sockaddr*>(&address), sizeof address) == 0;
    }
    ~HciSocket() { ::close(m_socket); }
    HciSocket(const HciSocket&) = delete;
    HciSocket& operator=(const HciSocket&) = delete;

    bool send(const void* data, std::size_t size) const {
        return m_isBound && ::write(m_socket, data, size) == static_cast<::ssize_t>(size);
    }
    // 0 when nothing came in time.
    std::size_t receive(void* data, std::size_t size) const {
        ::pollfd waiting{m_socket, POLLIN, 0};
        constexpr int timeout = std::chrono::milliseconds(kLongTimeout).count();
        if (::poll(&waiting, 1, timeout) <= 0) return 0;
        const auto count = ::read(m_socket, data, size);
        return count > 0 ? static_cast<std::size_t>(count) : 0;
    }

private:
    int m_socket;
    bool m_isBound = false;
};

bool manage(Command command, std::uint16_t radio, const std::vector<std::uint8_t>& parameters) {
    const HciSocket socket({});
    const Header header{command, radio, static_cast<std::uint16_t>(parameters.size())};
    std::vector<std::uint8_t> request(sizeof header);
    std::memcpy(request.data(), &header, sizeof header);
    request.insert(request.end(), parameters.begin(), parameters.end());
    if (!socket.send(request.data(), request.size())) return false;
    // The answer: its header, the command, a byte for how it went. Other events come between.
    struct {
        Header header;
        std::uint16_t command;
        std::uint8_t status;
        std::array<std::uint8_t, 1024> rest;
    } event{};
    while (socket.receive(&event, sizeof event) > 0) {
        const bool isAnswer = event.header.code == CommandComplete || event.header.code == CommandStatus;
        if (isAnswer && event.header.radio == radio && event.command == command) return event.status == 0;
    }
    return false;
}

} // namespace

bool setClass(std::uint16_t radio, std::uint8_t major, std::uint8_t minor) {
    return manage(SetClass, radio, {major, minor});
}

bool setDiscoverable(std::uint16_t radio, bool isOn) {
    return manage(SetDiscoverable, radio, {isOn ? std::uint8_t{1} : std::uint8_t{0}, 0, 0}); // without an end
}

bool setSimplePairing(std::uint16_t radio, bool isOn) {
    const std::uint8_t value = isOn ? 1 : 0;
    if (!manage(SetSimplePairing, radio, {value})) return false;
    // The kernel says so to its own side only; the emulated radio would go on pairing without a PIN.
    const HciSocket raw({.radio = radio, .channel = kRawChannel});
    const std::array<std::uint8_t, 5> writeSimplePairingMode{0x01, 0x56, 0x0c, 1, value};
    return raw.send(writeSimplePairingMode.data(), writeSimplePairingMode.size());
}

bool hangUp(std::uint16_t radio, const std::string& address) {
    std::array<unsigned, 6> bytes{};
    if (std::sscanf(address.c_str(), "%x:%x:%x:%x:%x:%x", &bytes[5], &bytes[4], &bytes[3], &bytes[2], &bytes[1],
                    &bytes[0]) != 6)
        return false;
    std::vector<std::uint8_t> parameters(bytes.begin(), bytes.end());
    parameters.push_back(0); // not low energy
    return manage(Disconnect, radio, parameters);
}

} // namespace machine
