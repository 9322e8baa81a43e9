#include "services/jvninputd/Service.h"

#include <algorithm>
#include <cstring>

// What clients are shown.

namespace jvninputd {

namespace {

std::uint8_t asByte(std::size_t count) { return static_cast<std::uint8_t>(std::min<std::size_t>(count, 255)); }

// Cut where a character ends.
std::size_t fittingSize(const std::string& name) {
    std::size_t size = std::min(name.size(), input::keyboardNameSize - 1);
    while (size > 0 && size < name.size() && (static_cast<unsigned char>(name[size]) & 0xc0) == 0x80) --size;
    return size;
}

} // namespace

void Service::settle() {
    const auto deadline = m_player.deadline();
    if (deadline != m_playerDeadline) {
        m_playerDeadline = deadline;
        m_playerTimer =
            deadline ? m_loop.after(std::max(*deadline - m_loop.now(), Duration(0)), [this] { playerDue(); }) : nullptr;
    }
    m_watchdog.guard(m_player.takenCount() > 0);
    for (const auto& client : m_server.clients())
        if (client->role()) client->show(stateFor(*client));
}

void Service::playerDue() {
    m_playerDeadline.reset();
    m_player.timePassed(m_loop.now());
    settle();
}

input::Readiness Service::readinessFor(const Client& client) const {
    if (m_playing && m_playing->user() == client.user()) return m_player.readiness();
    if (client.user() != 0 && m_sessions.inFront() != client.user()) return input::Readiness::notInFront;
    if (!mayPlay(client.user())) return input::Readiness::locked;
    return input::Readiness::ungoverned;
}

input::State Service::stateFor(const Client& client) const {
    auto state = input::makeMessage<input::State>();
    state.readiness = readinessFor(client);
    state.keyboards = asByte(m_player.keyboardCount());
    if (!m_playing || m_playing->user() != client.user()) return state;
    state.mode = m_player.mode();
    state.profile = m_player.profile();
    state.gameListens = m_player.listening();
    state.keyboardsTaken = asByte(m_player.takenCount());
    if (client.role() != input::Role::govern) state.inputs = m_player.inputs();
    return state;
}

void Service::showKeyboards() {
    auto message = input::makeMessage<input::Keyboards>();
    message.count = static_cast<std::uint32_t>(m_keyboards.size());
    std::size_t next = 0;
    for (const auto& [device, keyboard] : m_keyboards) {
        if (next == input::maximumKeyboardNames) break;
        std::memcpy(message.names[next++], keyboard.name.data(), fittingSize(keyboard.name));
    }
    for (const auto& client : m_server.clients())
        if (client->role()) client->show(message);
}

} // namespace jvninputd
