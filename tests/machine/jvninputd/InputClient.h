#pragma once

#include "services/input_protocol/messages.h"
#include "tests/machine/support/wait_until.h"

#include <functional>
#include <initializer_list>
#include <map>
#include <optional>
#include <string>
#include <sys/socket.h>
#include <utility>
#include <vector>

namespace machine {

using Bindings = std::vector<std::pair<int, int>>; // HID usage, native code

// W A S D, I J K L, 2 and 8, Escape.
Bindings defaultBindings();

// A client of jvninputd. What cannot be done throws std::system_error.
class InputClient {
public:
    explicit InputClient(const std::string& socket);
    InputClient(const std::string& socket, input::Role role);
    ~InputClient();
    InputClient(InputClient&& other) noexcept;
    InputClient& operator=(InputClient&&) = delete;

    void hello(input::Role role);
    void play(const Bindings& bindings, input::PlayMode mode = input::PlayMode::whileListened,
              bool forceExtended = false);
    void playNothing();
    void light(const std::string& address, int red, int green, int blue);
    void leaveLightAlone();
    void send(const void* data, std::size_t size) const;
    // False when the other side has closed.
    template <class Message> bool trySend(const Message& message) const {
        return ::send(m_socket, &message, sizeof message, MSG_NOSIGNAL) == static_cast<ssize_t>(sizeof message);
    }
    void close();

    // Waits until the state that was sent last is like that; false when it did not come to that in time.
    bool waitFor(const std::function<bool(const input::State&)>& wanted,
                 std::chrono::milliseconds timeout = kLongTimeout);
    bool waitFor(input::Readiness readiness, std::chrono::milliseconds timeout = kLongTimeout);
    // Waits until it is told that the controller is there, or gone.
    bool waitForController(const std::string& address, bool present, std::chrono::milliseconds timeout = kLongTimeout);
    // Waits for the end of the connection, and says what was the reason.
    std::optional<input::RefusalReason> refusal(std::chrono::milliseconds timeout = kLongTimeout);

    // Waits for the end of the connection, with a reason or without.
    bool ended(std::chrono::milliseconds timeout = kLongTimeout);

    const input::State& state() const { return m_state; }
    // How often a game began to listen, by all states that have been waited for.
    int gamesHeard() const { return m_gamesHeard; }
    std::vector<std::string> keyboards() const { return m_keyboards; }

private:
    // False when nothing came in time, or the connection is closed.
    bool receive(std::chrono::milliseconds timeout);

    int m_socket = -1;
    input::State m_state{};
    bool m_stateKnown = false;
    int m_gamesHeard = 0;
    bool m_closed = false;
    std::vector<std::string> m_keyboards;
    std::map<std::string, bool> m_controllers;
    std::optional<input::RefusalReason> m_refusal;
};

// Until everything that was sent to the service before has been dealt with.
void settle(const std::string& socket);

} // namespace machine
