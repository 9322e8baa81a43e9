#pragma once

#include "services/common/EventLoop.h"
#include "services/jvninputd/Hotplug.h"
#include "services/jvninputd/KernelDevices.h"
#include "services/jvninputd/LightKeeper.h"
#include "services/jvninputd/Player.h"
#include "services/jvninputd/Server.h"
#include "services/jvninputd/Sessions.h"
#include "services/jvninputd/Watchdog.h"

#include "system/files/Descriptor.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace jvninputd {

// The program: connects clients, sessions, devices and the rules of playing. Quits the loop when it has had no client
// for a while.
class Service {
public:
    // The socket listens and does not block.
    Service(services::EventLoop& loop, seat::Descriptor listener);

private:
    void keyboardAdded(const std::string& device, const KeyboardFound& found);
    void keyboardGone(KeyboardId id);
    void deviceRemoved(const std::string& device);
    void joined(Client& client);
    void left(Client& client);
    void settingsCame(Client& client);
    void lightCame(Client& client);
    void sessionChanged();
    void serverEmpty(bool isEmpty);
    void playerDue();

    bool mayPlay(uid_t user) const;
    const Client* whoPlays() const;
    void changePlayer();
    void playSettings();
    void updateListening();
    void chooseLight();

    input::Readiness readinessFor(const Client& client) const;
    input::State stateFor(const Client& client) const;
    void showKeyboards();
    void tellControllers();
    // To be called after whatever may have changed what clients are shown, or when the Player has to be woken.
    void settle();

    struct Keyboard {
        KeyboardId id;
        std::string name;
    };

    services::EventLoop& m_loop;
    std::map<const Client*, HandSwitch> m_handSwitches;
    std::map<std::string, Keyboard> m_keyboards; // by the kernel's name of the node
    KeyboardId m_lastKeyboard = 0;
    std::vector<input::Controller> m_controllers; // as governors were told
    // Whose settings and whose colour count. They are told of before they go.
    const Client* m_playing = nullptr;
    const Client* m_lighting = nullptr;
    services::EventLoop::Source m_playerTimer;
    std::optional<Moment> m_playerDeadline;
    services::EventLoop::Source m_idleTimer;

    KernelDevices m_devices;
    Player m_player;
    Sessions m_sessions;
    LightKeeper m_lights;
    Watchdog m_watchdog;
    Server m_server;
    Hotplug m_hotplug;
};

} // namespace jvninputd
