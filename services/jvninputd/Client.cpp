#include "services/jvninputd/Client.h"

#include "services/common/log.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <span>
#include <sys/epoll.h>
#include <sys/socket.h>
#include <utility>

namespace jvninputd {

namespace {

// How long a connection may say nothing before its Hello.
constexpr Duration longestSilence = std::chrono::seconds(5);
// A page that drags a colour sends a message for each picture; nobody sends many more for long.
constexpr double allowedAtOnce = 256;
constexpr double allowedEachSecond = 128;
// Controllers that come and go faster than the other side reads. Real ones do not.
constexpr std::size_t longestQueue = 256;

template <class Message> bool same(const std::optional<Message>& one, const Message& other) {
    return one && std::memcmp(&*one, &other, sizeof other) == 0;
}

bool isZero(std::span<const std::uint8_t> bytes) {
    return std::ranges::all_of(bytes, [](std::uint8_t byte) { return byte == 0; });
}

} // namespace

Client::Client(services::EventLoop& loop, seat::Descriptor socket, uid_t user, Callbacks callbacks)
    : m_loop(loop), m_socket(std::move(socket)), m_user(user), m_callbacks(std::move(callbacks)),
      m_allowance(allowedAtOnce), m_allowanceTime(loop.now()) {
    watch(EPOLLIN);
    m_silence = m_loop.after(longestSilence, [this] { end(); });
}

void Client::watch(std::uint32_t events) {
    m_watch.reset(); // a descriptor is watched once
    m_watch = m_loop.watch(m_socket.get(), events, [this](std::uint32_t came) { ready(came); });
}

void Client::ready(std::uint32_t events) {
    if (m_full && events & EPOLLOUT) {
        m_full = false;
        watch(EPOLLIN);
        send();
    }
    if (events & ~static_cast<std::uint32_t>(EPOLLOUT)) readable();
}

void Client::readable() {
    // One byte more than any message, so that a longer one is seen to be longer.
    std::array<std::byte, input::maximumMessageSize + 1> buffer;
    while (!m_ended) {
        const ssize_t size = ::recv(m_socket.get(), buffer.data(), buffer.size(), 0);
        if (size < 0 && (errno == EAGAIN || errno == EINTR)) return;
        if (size <= 0) return end(); // an empty message looks like the end, and is none of ours either
        if (!mayReceive()) return refuse(input::RefusalReason::tooManyMessages);
        received(buffer.data(), static_cast<std::size_t>(size));
    }
}

bool Client::mayReceive() {
    const services::Moment now = m_loop.now();
    const double seconds = std::chrono::duration<double>(now - m_allowanceTime).count();
    m_allowance = std::min(allowedAtOnce, m_allowance + seconds * allowedEachSecond) - 1;
    m_allowanceTime = now;
    return m_allowance >= 0;
}

void Client::received(const void* data, std::size_t size) {
    const auto header = input::headerOf(data, size);
    if (header && header->version != input::protocolVersion) return refuse(input::RefusalReason::version);
    if (!m_role) {
        const auto message = input::messageFrom<input::Hello>(data, size);
        if (!message || !isValid(*message)) return refuse(input::RefusalReason::malformed);
        return hello(*message);
    }
    const bool governs = *m_role == input::Role::govern;
    const bool plays = governs || *m_role == input::Role::tryOut;
    if (const auto settings = input::messageFrom<input::Settings>(data, size);
        settings && plays && isValid(*settings)) {
        m_settings = settings;
        return m_callbacks.settings(*this);
    }
    if (const auto light = input::messageFrom<input::Light>(data, size); light && governs && isValid(*light)) {
        m_light = light;
        return m_callbacks.light(*this);
    }
    refuse(input::RefusalReason::malformed);
}

void Client::hello(const input::Hello& message) {
    m_silence.reset();
    if (const auto reason = m_callbacks.hello(*this, message.role)) return refuse(*reason);
    m_role = message.role;
    m_callbacks.joined(*this);
}

void Client::show(const input::State& state) {
    if (same(m_newState ? m_newState : m_state, state)) return;
    m_newState = state;
    send();
}

void Client::show(const input::Keyboards& keyboards) {
    if (same(m_newKeyboards ? m_newKeyboards : m_keyboards, keyboards)) return;
    m_newKeyboards = keyboards;
    send();
}

void Client::tell(const input::Controller& controller) {
    if (m_controllers.size() >= longestQueue) return end();
    m_controllers.push_back(controller);
    send();
}

void Client::send() {
    if (m_ended || m_full) return;
    if (m_newState && sendOne(&*m_newState, sizeof *m_newState)) m_state = std::exchange(m_newState, std::nullopt);
    if (m_newKeyboards && sendOne(&*m_newKeyboards, sizeof *m_newKeyboards))
        m_keyboards = std::exchange(m_newKeyboards, std::nullopt);
    while (!m_controllers.empty() && sendOne(&m_controllers.front(), sizeof m_controllers.front()))
        m_controllers.pop_front();
}

// False when it has to wait until the other side has read, or for ever.
bool Client::sendOne(const void* data, std::size_t size) {
    if (m_ended || m_full) return false;
    if (::send(m_socket.get(), data, size, MSG_NOSIGNAL) >= 0) return true;
    if (errno != EAGAIN && errno != ENOBUFS) {
        end();
        return false;
    }
    m_full = true;
    watch(EPOLLIN | EPOLLOUT);
    return false;
}

void Client::refuse(input::RefusalReason reason) {
    if (m_ended) return;
    auto message = input::makeMessage<input::Refused>();
    message.reason = reason;
    ::send(m_socket.get(), &message, sizeof message, MSG_NOSIGNAL | MSG_DONTWAIT);
    // What is closed unread resets the connection, and the other side may not look for a reason any more.
    std::array<std::byte, 1> rest;
    for (int i = 0; i < 64 && ::recv(m_socket.get(), rest.data(), rest.size(), MSG_DONTWAIT) > 0; ++i) {
    }
    services::log("closing a connection of user %u: reason %u", static_cast<unsigned>(m_user),
                  static_cast<unsigned>(reason));
    end();
}

void Client::end() {
    if (m_ended) return;
    m_ended = true;
    m_watch.reset();
    m_silence.reset();
    m_socket.reset();
    m_callbacks.gone(*this);
}

bool isValid(const input::Hello& message) {
    return isZero(message.reserved) && message.role >= input::Role::govern && message.role <= input::Role::listen;
}

bool isValid(const input::Settings& message) {
    return message.reserved == 0 && message.keyboardPlays <= 1 && message.forceExtended <= 1 &&
           message.bindingCount <= input::maximumBindings &&
           (message.mode == input::PlayMode::whileListened || message.mode == input::PlayMode::byHand);
}

bool isValid(const input::Light& message) {
    return isZero(message.reserved) &&
           (message.action == input::LightAction::leaveAlone || message.action == input::LightAction::set);
}

} // namespace jvninputd
