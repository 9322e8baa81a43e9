#pragma once

#include "services/bluetooth/Client.h"
#include "services/jvnd/Devices.h"

#include <functional>
#include <string>

namespace jvnd {

// Devices for a computer that has none: a controller that is linked can be played with at once, and what its light and
// the keyboard would do is said in lines.
class SimulatedDevices final : public Devices {
public:
    // The client outlives this object.
    SimulatedDevices(const bluetooth::Client& client, std::function<void(const std::string& line)> say);

    void setWanted(bool wanted) override { (void)wanted; }
    void setKeyboard(const input::Settings& settings) override;
    void setLight(const input::Light& light) override;
    std::optional<std::vector<bluetooth::Address>> controllers() const override;

    // To be called when a controller may have come or gone.
    void controllersChanged();

private:
    const bluetooth::Client& m_client;
    std::function<void(const std::string& line)> m_say;
    input::Light m_light = input::makeMessage<input::Light>();
    std::string m_shown; // the line of the light that is on
    std::string m_keyboard;
};

} // namespace jvnd
