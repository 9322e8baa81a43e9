#include "services/jvninputd/Service.h"

#include "services/common/log.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace jvninputd {

namespace {

// How long the program stays without anybody to serve.
constexpr Duration idleTime = std::chrono::minutes(1);

} // namespace

Service::Service(services::EventLoop& loop, seat::Descriptor listener)
    : m_loop(loop), m_devices(loop, {[this](KeyboardId id, std::span<const Event> events) {
                                         m_player.frame(id, events, m_loop.now());
                                         settle();
                                     },
                                     [this](KeyboardId id) { keyboardGone(id); },
                                     [this] {
                                         updateListening();
                                         settle();
                                     }}),
      m_player(m_devices), m_sessions(loop, [this] { sessionChanged(); }), m_lights(setLight), m_watchdog(loop),
      m_server(loop, std::move(listener),
               {[this](uid_t user) { return m_sessions.atSeat(user); }, [this](Client& client) { joined(client); },
                [this](Client& client) { settingsCame(client); }, [this](Client& client) { lightCame(client); },
                [this](Client& client) { left(client); }, [this](bool isEmpty) { serverEmpty(isEmpty); }}),
      m_hotplug(loop, {[this](const std::string& device, const KeyboardFound& found) { keyboardAdded(device, found); },
                       [this](const std::string& device, const ControllerFound& found) {
                           m_lights.added(device, found);
                           tellControllers();
                       },
                       [this](const std::string& device) { deviceRemoved(device); }}) {
    m_hotplug.enumerate();
    serverEmpty(/*isEmpty=*/true);
}

void Service::keyboardAdded(const std::string& device, const KeyboardFound& found) {
    if (m_keyboards.contains(device)) return; // told of again
    const KeyboardId id = ++m_lastKeyboard;
    m_keyboards[device] = {id, found.name};
    m_devices.add(id, found.node);
    m_player.keyboardAdded(id, m_loop.now());
    showKeyboards();
    settle();
}

void Service::deviceRemoved(const std::string& device) {
    m_lights.removed(device);
    tellControllers();
    if (const auto found = m_keyboards.find(device); found != m_keyboards.end()) keyboardGone(found->second.id);
}

void Service::keyboardGone(KeyboardId id) {
    m_player.keyboardRemoved(id, m_loop.now());
    m_devices.remove(id);
    std::erase_if(m_keyboards, [id](const auto& entry) { return entry.second.id == id; });
    showKeyboards();
    settle();
}

void Service::joined(Client& client) {
    m_handSwitches.try_emplace(&client);
    updateListening();
    showKeyboards();
    settle();
    if (client.role() != input::Role::govern) return;
    for (const input::Controller& controller : m_controllers) client.tell(controller);
}

void Service::left(Client& client) {
    changePlayer();
    updateListening();
    m_handSwitches.erase(&client);
    chooseLight();
    settle();
}

void Service::sessionChanged() {
    m_server.checkPermissions();
    changePlayer();
    chooseLight();
    settle();
}

void Service::serverEmpty(bool isEmpty) {
    m_idleTimer = isEmpty ? m_loop.after(idleTime, [this] { m_loop.quit(0); }) : nullptr;
}

bool Service::mayPlay(uid_t user) const { return user == 0 || (m_sessions.inFront() == user && !m_sessions.locked()); }

// Of those who may, root goes first; a user's trial goes before the user's governor.
const Client* Service::whoPlays() const {
    const auto settingsOf = [this](uid_t user) -> const Client* {
        for (const input::Role role : {input::Role::tryOut, input::Role::govern})
            if (const Client* client = m_server.find(user, role); client && client->settings()) return client;
        return nullptr;
    };
    const Client* root = settingsOf(0);
    const auto user = m_sessions.inFront();
    if ((root && root->settings()->keyboardPlays) || !user || !mayPlay(*user)) return root;
    return settingsOf(*user);
}

// Somebody else may play, or nobody: what was played is let go at once.
void Service::changePlayer() {
    const Client* next = whoPlays();
    if (next == m_playing) return;
    m_player.play(std::nullopt, Player::GiveBack::AtOnce, m_loop.now());
    m_playing = next;
    if (m_playing) playSettings();
    updateListening();
}

// A user who looks at what the keyboard plays is a listener like a game, to what that user's own settings play. A new
// pad has no game yet, and may have that user.
void Service::updateListening() {
    const bool isWatched = m_playing && m_server.find(m_playing->user(), input::Role::listen);
    const bool isHeard = m_devices.hasListener() || isWatched;
    if (isHeard != m_player.listening()) m_player.setListening(isHeard, m_loop.now());
}

void Service::settingsCame(Client& client) {
    const Client* next = whoPlays();
    if (next != &client) {
        changePlayer();
        return settle();
    }
    m_playing = &client;
    playSettings();
    updateListening();
    settle();
}

void Service::playSettings() {
    const input::Settings& settings = *m_playing->settings();
    if (!settings.keyboardPlays) return m_player.play(std::nullopt, Player::GiveBack::WhenFree, m_loop.now());
    Play play = Play::from(settings);
    if (play.keymap.leftOut() > 0)
        services::log("keymap of user %u: %zu bindings left out", static_cast<unsigned>(m_playing->user()),
                      play.keymap.leftOut());
    play.handSwitch = &m_handSwitches[m_playing];
    m_player.play(play, Player::GiveBack::WhenFree, m_loop.now());
}

// Whose colour counts: root's, else that of the user in front.
void Service::chooseLight() {
    const auto lightOf = [this](uid_t user) -> const Client* {
        const Client* client = m_server.find(user, input::Role::govern);
        return client && client->light() ? client : nullptr;
    };
    const Client* next = lightOf(0);
    if (const auto user = m_sessions.inFront(); !next && user && mayPlay(*user)) next = lightOf(*user);
    if (next == m_lighting) return;
    m_lighting = next;
    m_lights.want(next ? next->light() : std::nullopt);
}

void Service::lightCame(Client& client) {
    chooseLight();
    if (m_lighting == &client) m_lights.want(client.light());
}

void Service::tellControllers() {
    const std::vector<input::Controller> now = m_lights.controllers();
    const auto same = [](const input::Controller& one, const input::Controller& other) {
        return std::memcmp(&one, &other, sizeof one) == 0;
    };
    const auto samePlace = [](const input::Controller& one, const input::Controller& other) {
        return std::ranges::equal(one.address, other.address) && one.bus == other.bus;
    };
    std::vector<input::Controller> news;
    for (const input::Controller& before : m_controllers)
        if (std::ranges::none_of(now, [&](const auto& one) { return samePlace(one, before); })) {
            news.push_back(before);
            news.back().present = 0;
        }
    for (const input::Controller& one : now)
        if (std::ranges::none_of(m_controllers, [&](const auto& before) { return same(one, before); }))
            news.push_back(one);
    m_controllers = now;
    for (const auto& client : m_server.clients())
        if (client->role() == input::Role::govern)
            for (const input::Controller& controller : news) client->tell(controller);
}

} // namespace jvninputd
