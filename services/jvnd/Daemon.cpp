#include "services/jvnd/Daemon.h"

#include "services/bluetooth/clients.h"
#include "services/jvnd/device_messages.h"
#include "services/jvnd/exit_codes.h"
#include "services/jvnd/frame_text.h"

namespace jvnd {

namespace {

constexpr const char* preferencesChanged = "com.quorrel.jvnprefs.changed";
constexpr const char* bringUpBluetooth = "com.quorrel.jvninitbt";

} // namespace

Daemon::Daemon(services::EventLoop& loop, ControlPlace& place, Options options)
    : m_loop(loop), m_place(place), m_options(std::move(options)),
      m_bluetooth(m_options.simulates
                      ? bluetooth::makeSimulatedClient(loop, m_options.root + bluetooth::simulatedWorldPath)
                      : bluetooth::makeSystemClient(loop)),
      m_devices(m_options.simulates ? std::unique_ptr<Devices>(std::make_unique<SimulatedDevices>(
                                          *m_bluetooth, [this](const std::string& line) { say(line); }))
                                    : std::make_unique<InputClient>(loop, m_options.inputSocket)),
      m_simulated(dynamic_cast<SimulatedDevices*>(m_devices.get())), m_status(m_options.root + daemon_status::filePath),
      m_settings(loop, m_options.root + preferencesFile, [this] { settingsChanged(); }),
      m_connector(loop, *m_bluetooth, *m_devices), m_commands(m_connector, actions()), m_server(loop, m_commands),
      m_signals(loop, {preferencesChanged, bringUpBluetooth}, [this](const std::string& name) { heard(name); }) {
    m_connector.onChanged([this] { stateChanged(); });
    m_server.onBusyChanged([this] {
        m_settings.checkWatch();
        updateIdle();
    });
    m_storedColor = m_settings.settings().color;
    settingsChanged();
    for (const auto& listener : m_place.listeners()) m_server.listen(listener.get());
}

Daemon::~Daemon() = default;

Commands::Actions Daemon::actions() {
    Commands::Actions actions;
    actions.settings = [this]() -> const Settings& { return m_settings.settings(); };
    actions.setColor = [this](Color color) {
        m_picked = color;
        updateLight();
    };
    actions.restart = [this] { m_loop.quit(exitRestart); };
    if (!m_options.trace) return actions;
    actions.trace = [this](const Caller& caller, const JVNControlFrame& asked, const JVNControlFrame* reply) {
        const auto number = std::to_string(caller.number());
        say(reply ? number + " > " + replyText(asked, *reply) : number + " < " + frameText(asked));
    };
    return actions;
}

bool Daemon::isNeeded() const {
    const auto& settings = m_settings.settings();
    return settings.controllerType == JVNControllerTypeKeyboard || settings.address;
}

void Daemon::settingsChanged() {
    const auto& settings = m_settings.settings();
    if (!(settings.color == m_storedColor)) m_picked.reset(); // what is stored is newer than what was sent
    m_storedColor = settings.color;
    m_devices->setKeyboard(keyboardMessage(settings));
    updateLight();
    stateChanged();
    updateIdle();
}

void Daemon::updateLight() { m_devices->setLight(lightMessage(m_settings.settings(), m_picked)); }

// A controller on a cable is lit that was never paired.
bool Daemon::isLightSet() const {
    return lightMessage(m_settings.settings(), m_picked).action == input::LightAction::set;
}

void Daemon::stateChanged() {
    m_devices->setWanted(isNeeded() || isLightSet() || m_connector.isConnecting());
    if (m_simulated) m_simulated->controllersChanged();
    updateStatus();
}

void Daemon::updateStatus() {
    const auto bluetoothStatus = [this] {
        switch (m_bluetooth->adapterState()) {
        case bluetooth::AdapterState::Unknown:
            return daemon_status::Bluetooth::unknown;
        case bluetooth::AdapterState::Absent:
            return daemon_status::Bluetooth::absent;
        case bluetooth::AdapterState::Blocked:
            return daemon_status::Bluetooth::blocked;
        case bluetooth::AdapterState::Off:
            return daemon_status::Bluetooth::off;
        case bluetooth::AdapterState::On:
            break;
        }
        return daemon_status::Bluetooth::on;
    };
    const auto keyboards = m_devices->keyboards();
    m_status.show({.bluetooth = bluetoothStatus(),
                   .isKeyboardChosen = m_settings.settings().controllerType == JVNControllerTypeKeyboard,
                   .inputService = keyboards.service,
                   .readiness = keyboards.readiness,
                   .keyboards = keyboards.count});
}

void Daemon::updateIdle() {
    m_idle.reset();
    if (!m_place.isManaged() || isNeeded() || m_server.connectionCount() > 0) return;
    m_idle = m_loop.after(idleTime, [this] { m_loop.quit(exitSuccess); });
}

void Daemon::heard(const std::string& notification) {
    say("heard " + notification);
    if (notification == bringUpBluetooth)
        m_connector.bringUp();
    else
        m_settings.reread();
}

void Daemon::say(const std::string& line) const {
    if (m_options.trace) m_options.trace(line);
}

} // namespace jvnd
