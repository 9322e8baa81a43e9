#include "tests/machine/jvninputd/InputClient.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <system_error>
#include <unistd.h>

namespace machine {
namespace {

using Clock = std::chrono::steady_clock;

std::chrono::milliseconds left(Clock::time_point deadline) {
    return std::max(std::chrono::milliseconds(0),
                    std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()));
}

} // namespace

Bindings defaultBindings() {
    return {{26, 3}, {4, 2}, {22, 4}, {7, 1}, {12, 8}, {13, 7}, {14, 5}, {15, 6}, {31, 9}, {37, 10}, {41, 21}};
}

InputClient::InputClient(const std::string& path) : m_socket(::socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0)) {
    ::sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    if (::connect(m_socket, reinterpret_cast<::sockaddr*>(&address), sizeof address) < 0)
        throw std::system_error(errno, std::generic_category(), "connecting to the service");
}

InputClient::InputClient(const std::string& socket, input::Role role) : InputClient(socket) { hello(role); }

InputClient::~InputClient() { close(); }

InputClient::InputClient(InputClient&& other) noexcept
    : m_socket(std::exchange(other.m_socket, -1)), m_state(other.m_state), m_stateKnown(other.m_stateKnown),
      m_gamesHeard(other.m_gamesHeard), m_closed(other.m_closed), m_keyboards(std::move(other.m_keyboards)),
      m_controllers(std::move(other.m_controllers)), m_refusal(other.m_refusal) {}

void InputClient::close() {
    if (m_socket >= 0) ::close(std::exchange(m_socket, -1));
}

void InputClient::send(const void* data, std::size_t size) const { ::send(m_socket, data, size, MSG_NOSIGNAL); }

void InputClient::hello(input::Role role) {
    auto message = input::makeMessage<input::Hello>();
    message.role = role;
    send(&message, sizeof message);
}

void InputClient::play(const Bindings& bindings, input::PlayMode mode, bool forceExtended) {
    auto message = input::makeMessage<input::Settings>();
    message.keyboardPlays = 1;
    message.mode = mode;
    message.forceExtended = forceExtended;
    for (const auto& [usage, code] : bindings)
        message.bindings[message.bindingCount++] = {static_cast<std::uint16_t>(usage),
                                                    static_cast<std::uint16_t>(code)};
    send(&message, sizeof message);
}

void InputClient::playNothing() {
    const auto message = input::makeMessage<input::Settings>();
    send(&message, sizeof message);
}

void InputClient::light(const std::string& address, int red, int green, int blue) {
    auto message = input::makeMessage<input::Light>();
    std::sscanf(address.c_str(), "%hhx:%hhx:%hhx:%hhx:%hhx:%hhx", &message.address[0], &message.address[1],
                &message.address[2], &message.address[3], &message.address[4], &message.address[5]);
    message.action = input::LightAction::set;
    message.red = static_cast<std::uint8_t>(red);
    message.green = static_cast<std::uint8_t>(green);
    message.blue = static_cast<std::uint8_t>(blue);
    send(&message, sizeof message);
}

void InputClient::leaveLightAlone() {
    const auto message = input::makeMessage<input::Light>();
    send(&message, sizeof message);
}

bool InputClient::receive(std::chrono::milliseconds timeout) {
    ::pollfd waiting{m_socket, POLLIN, 0};
    if (m_closed || ::poll(&waiting, 1, static_cast<int>(timeout.count())) <= 0) return false;
    char buffer[2 * input::maximumMessageSize];
    const ssize_t size = ::recv(m_socket, buffer, sizeof buffer, 0);
    if (size < 0 && errno == ECONNRESET) return receive(timeout); // once, before the reason
    if (size <= 0) {
        m_closed = true;
        return false;
    }
    const auto length = static_cast<std::size_t>(size);
    if (const auto state = input::messageFrom<input::State>(buffer, length)) {
        if (state->gameListens && !m_state.gameListens) ++m_gamesHeard;
        m_state = *state;
        m_stateKnown = true;
    }
    if (const auto keyboards = input::messageFrom<input::Keyboards>(buffer, length)) {
        m_keyboards.clear();
        for (std::uint32_t i = 0; i < std::min<std::size_t>(keyboards->count, input::maximumKeyboardNames); ++i)
            m_keyboards.emplace_back(keyboards->names[i]);
    }
    if (const auto controller = input::messageFrom<input::Controller>(buffer, length)) {
        char address[18];
        const auto* bytes = controller->address;
        std::snprintf(address, sizeof address, "%02X:%02X:%02X:%02X:%02X:%02X", bytes[0], bytes[1], bytes[2], bytes[3],
                      bytes[4], bytes[5]);
        m_controllers[address] = controller->present != 0;
    }
    if (const auto refused = input::messageFrom<input::Refused>(buffer, length)) m_refusal = refused->reason;
    return true;
}

bool InputClient::waitFor(const std::function<bool(const input::State&)>& wanted, std::chrono::milliseconds timeout) {
    const auto deadline = Clock::now() + timeout;
    while (receive(std::chrono::milliseconds(0))) {
    }
    while (!m_stateKnown || !wanted(m_state))
        if (!receive(left(deadline))) return false;
    return true;
}

bool InputClient::waitFor(input::Readiness readiness, std::chrono::milliseconds timeout) {
    return waitFor([readiness](const input::State& state) { return state.readiness == readiness; }, timeout);
}

bool InputClient::waitForController(const std::string& address, bool present, std::chrono::milliseconds timeout) {
    const auto deadline = Clock::now() + timeout;
    const auto is = [&] {
        const auto found = m_controllers.find(address);
        return found != m_controllers.end() && found->second == present;
    };
    while (!is())
        if (!receive(left(deadline))) return false;
    return true;
}

std::optional<input::RefusalReason> InputClient::refusal(std::chrono::milliseconds timeout) {
    const auto deadline = Clock::now() + timeout;
    while (receive(left(deadline))) {
    }
    return m_closed ? m_refusal : std::nullopt;
}

bool InputClient::ended(std::chrono::milliseconds timeout) {
    (void)refusal(timeout);
    return m_closed;
}

void settle(const std::string& socket) {
    InputClient client(socket, input::Role::observe);
    if (!client.waitFor([](const input::State&) { return true; }))
        throw std::system_error(ETIMEDOUT, std::generic_category(), "the service's answer");
}

} // namespace machine
