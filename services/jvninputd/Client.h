#pragma once

#include "services/common/EventLoop.h"
#include "services/input_protocol/messages.h"
#include "services/jvninputd/moment.h"

#include "system/files/Descriptor.h"

#include <cstddef>
#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

namespace jvninputd {

// One connection, from its first message on. It reads and checks messages, and sends the latest of what it is given to
// send as fast as the other side takes it.
class Client {
public:
    struct Callbacks {
        std::function<std::optional<input::RefusalReason>(Client&, input::Role)> hello; // a reason refuses it
        std::function<void(Client&)> joined;                                            // it has its role
        std::function<void(Client&)> settings;
        std::function<void(Client&)> light;
        std::function<void(Client&)> gone; // destroys the client, not at once
    };
    Client(services::EventLoop& loop, seat::Descriptor socket, uid_t user, Callbacks callbacks);

    uid_t user() const { return m_user; }
    // None before Hello.
    std::optional<input::Role> role() const { return m_role; }
    bool ended() const { return m_ended; }
    // What it has asked for.
    const std::optional<input::Settings>& settings() const { return m_settings; }
    const std::optional<input::Light>& light() const { return m_light; }

    // Each replaces what has not been sent of its kind; what is as it was is not sent.
    void show(const input::State& state);
    void show(const input::Keyboards& keyboards);
    void tell(const input::Controller& controller);

    // Says why, and closes.
    void refuse(input::RefusalReason reason);

private:
    void watch(std::uint32_t events);
    void ready(std::uint32_t events);
    void readable();
    void received(const void* data, std::size_t size);
    bool mayReceive();
    void hello(const input::Hello& message);
    void send();
    bool sendOne(const void* data, std::size_t size);
    void end();

    services::EventLoop& m_loop;
    seat::Descriptor m_socket;
    uid_t m_user;
    Callbacks m_callbacks;
    std::optional<input::Role> m_role;
    std::optional<input::Settings> m_settings;
    std::optional<input::Light> m_light;
    std::optional<input::State> m_state;         // sent last
    std::optional<input::State> m_newState;      // to be sent
    std::optional<input::Keyboards> m_keyboards; // likewise
    std::optional<input::Keyboards> m_newKeyboards;
    std::deque<input::Controller> m_controllers; // to be sent
    double m_allowance;                          // of messages that may come
    services::Moment m_allowanceTime;
    bool m_ended = false;
    bool m_full = false; // the other side has to read before more can be sent
    services::EventLoop::Source m_watch;
    services::EventLoop::Source m_silence;
};

// Whether the values of the message are those that messages.h lists.
bool isValid(const input::Hello& message);
bool isValid(const input::Settings& message);
bool isValid(const input::Light& message);

} // namespace jvninputd
