#include "services/jvnd/InputClient.h"

#include "services/common/log.h"
#include "system/socket/address.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <sys/epoll.h>
#include <sys/socket.h>

namespace jvnd {

namespace {

using namespace std::chrono_literals;

constexpr std::chrono::milliseconds firstDelay = 50ms;
constexpr std::chrono::milliseconds longestDelay = 60s;
// Colours that change faster than anybody sees are not passed on.
constexpr std::chrono::milliseconds lightInterval = 20ms;

const char* reasonText(input::RefusalReason reason) {
    switch (reason) {
    case input::RefusalReason::notPermitted:
        return "no session at the seat";
    case input::RefusalReason::version:
        return "it is of another version";
    case input::RefusalReason::roleTaken:
        return "another daemon of this user is there";
    case input::RefusalReason::malformed:
        return "it did not understand a message";
    case input::RefusalReason::tooManyMessages:
        return "too many messages";
    case input::RefusalReason::busy:
        return "it has too many clients";
    }
    return "refused";
}

} // namespace

InputClient::InputClient(services::EventLoop& loop, std::string socketPath)
    : m_loop(loop), m_socketPath(std::move(socketPath)) {}

void InputClient::setWanted(bool wanted) {
    if (wanted == m_isWanted) return;
    m_isWanted = wanted;
    m_delay = 0ms;
    if (wanted) return connect();
    m_keyboards = {};
    disconnect();
}

void InputClient::setKeyboard(const input::Settings& settings) {
    if (std::memcmp(&settings, &m_settings, sizeof settings) == 0) return;
    m_settings = settings;
    m_owesSettings = true;
    sendPending();
}

void InputClient::setLight(const input::Light& light) {
    if (std::memcmp(&light, &m_light, sizeof light) == 0) return;
    m_light = light;
    m_owesLight = true;
    sendPending();
}

std::optional<std::vector<bluetooth::Address>> InputClient::controllers() const {
    if (!m_descriptor) return std::nullopt;
    return m_controllers;
}

void InputClient::connect() {
    m_timer.reset();
    m_appears.reset();
    if (const int error = tryToConnect(); error != 0) {
        retry(error == ENOENT);
        return setKeyboards({.service = daemon_status::InputService::unreachable});
    }
    m_owesHello = m_owesSettings = m_owesLight = true;
    m_lastLight.reset();
    watch(/*hasMore=*/false);
    sendPending();
}

// 0, or the system's error number.
int InputClient::tryToConnect() {
    m_descriptor.reset(::socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    int error = m_descriptor ? seat::connectToPath(m_descriptor.get(), m_socketPath) : errno;
    if (error == 0 && !seat::peerIsTrusted(m_descriptor.get())) error = EACCES;
    if (error == 0) return 0;
    services::log("connecting %s: %s", m_socketPath.c_str(), std::strerror(error));
    m_descriptor.reset();
    return error;
}

// One that comes is heard of by its socket; one that is there and does not take us is asked again, ever more rarely.
void InputClient::retry(bool isAbsent) {
    m_appears.emplace(m_loop, m_socketPath, [this] {
        m_delay = 0ms;
        m_timer = m_loop.after(firstDelay, [this] { connect(); });
    });
    if (isAbsent && m_appears->isWatching()) return;
    m_delay = std::clamp(m_delay * 2, firstDelay, longestDelay);
    m_timer = m_loop.after(m_delay, [this] { connect(); });
}

void InputClient::watch(bool hasMore) {
    m_ready.reset();
    m_ready = m_loop.watch(m_descriptor.get(), hasMore ? EPOLLIN | EPOLLOUT : EPOLLIN, [this](std::uint32_t events) {
        if (events & EPOLLOUT) {
            watch(/*hasMore=*/false);
            sendPending();
        } else {
            receive();
        }
    });
}

void InputClient::sendPending() {
    if (!m_descriptor) return;
    const auto send = [this](bool& owed, const auto& message) {
        if (!owed) return true;
        const auto sent = ::send(m_descriptor.get(), &message, sizeof message, MSG_DONTWAIT | MSG_NOSIGNAL);
        owed = sent < 0 && errno == EAGAIN;
        return !owed; // a connection that is over says so when it is read
    };
    auto hello = input::makeMessage<input::Hello>();
    hello.role = input::Role::govern;
    bool isSent = send(m_owesHello, hello) && send(m_owesSettings, m_settings);
    if (isSent && m_owesLight) {
        const auto wait = m_lastLight ? *m_lastLight + lightInterval - m_loop.now() : services::Moment{0};
        if (wait > 0us) {
            m_timer = m_loop.after(wait, [this] { sendPending(); });
            return;
        }
        isSent = send(m_owesLight, m_light);
        m_lastLight = m_loop.now();
    }
    if (!isSent) watch(/*hasMore=*/true);
}

void InputClient::receive() {
    alignas(8) char message[input::maximumMessageSize + 1]; // one that is too large does not pass for a whole one
    for (;;) {
        const auto got = ::recv(m_descriptor.get(), message, sizeof message, MSG_DONTWAIT);
        if (got < 0 && errno == ECONNRESET) continue; // said once, before what the other side has sent at last
        if (got < 0 && (errno == EAGAIN || errno == EINTR)) return;
        if (got <= 0) break;
        received(message, static_cast<std::size_t>(got));
        if (!m_descriptor) return; // whoever heard of it wants us no more
    }
    if (!m_isRefused) services::log("jvninputd: the connection has ended");
    m_isRefused = false;
    m_keyboards = {.service = daemon_status::InputService::unreachable};
    disconnect();
    if (m_isWanted) retry(/*isAbsent=*/false);
}

void InputClient::received(const void* message, std::size_t size) {
    if (const auto refused = input::messageFrom<input::Refused>(message, size)) {
        services::log("jvninputd: %s", reasonText(refused->reason));
        m_isRefused = true;
    } else if (const auto state = input::messageFrom<input::State>(message, size)) {
        m_delay = 0ms; // it has taken us
        setKeyboards({daemon_status::InputService::connected, state->readiness, state->keyboards});
    } else if (const auto controller = input::messageFrom<input::Controller>(message, size)) {
        const auto address = bluetooth::Address::fromBytes(controller->address);
        if (controller->bus != input::Bus::bluetooth || !address) return;
        std::erase(m_controllers, *address);
        if (controller->present) m_controllers.push_back(*address);
        tellChanged();
    }
}

void InputClient::setKeyboards(const Keyboards& keyboards) {
    if (keyboards == m_keyboards) return;
    m_keyboards = keyboards;
    tellChanged();
}

void InputClient::disconnect() {
    m_ready.reset();
    m_timer.reset();
    m_appears.reset();
    m_descriptor.reset();
    m_controllers.clear();
    tellChanged();
}

} // namespace jvnd
