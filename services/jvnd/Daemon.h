#pragma once

#include "services/jvnd/Commands.h"
#include "services/jvnd/ControlPlace.h"
#include "services/jvnd/ControlServer.h"
#include "services/jvnd/InputClient.h"
#include "services/jvnd/SessionSignals.h"
#include "services/jvnd/SettingsFile.h"
#include "services/jvnd/SimulatedDevices.h"
#include "services/jvnd/StatusFile.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace jvnd {

// Below the root.
inline constexpr const char* preferencesFile = "/var/mobile/Library/Preferences/com.quorrel.joyvane.plist";

// The user's daemon at work: answers the control socket, holds the settings, and has the Bluetooth service and the
// devices do what they say.
class Daemon {
public:
    struct Options {
        std::string root; // a real path, without a slash at its end
        std::string inputSocket = input::socketPath;
        bool simulates = false;
        // Hears each frame, reply, notification and change in a line. May be empty.
        std::function<void(const std::string& line)> trace;
    };

    // How long a daemon that nobody needs stays, when the service manager would start it again.
    static constexpr std::chrono::minutes idleTime{1};

    // The loop outlives this object, which quits it with one of exit_codes.h.
    Daemon(services::EventLoop& loop, ControlPlace& place, Options options);
    ~Daemon();
    Daemon(const Daemon&) = delete;
    Daemon& operator=(const Daemon&) = delete;

    // A keyboard or a paired controller: there may be something to do at any moment.
    bool isNeeded() const;

private:
    Commands::Actions actions();
    void settingsChanged();
    void stateChanged();
    void updateLight();
    bool isLightSet() const;
    void updateStatus();
    void updateIdle();
    void heard(const std::string& notification);
    void say(const std::string& line) const;

    services::EventLoop& m_loop;
    ControlPlace& m_place;
    Options m_options;
    std::unique_ptr<bluetooth::Client> m_bluetooth;
    std::unique_ptr<Devices> m_devices;
    SimulatedDevices* m_simulated = nullptr; // the devices, when they are
    StatusFile m_status;
    SettingsFile m_settings;
    std::optional<Color> m_picked;
    Color m_storedColor;
    Connector m_connector;
    Commands m_commands;
    ControlServer m_server;
    SessionSignals m_signals;
    services::EventLoop::Source m_idle;
};

} // namespace jvnd
