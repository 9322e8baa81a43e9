#include "services/jvnd/SimulatedDevices.h"

#include <algorithm>
#include <cstdio>

namespace jvnd {

SimulatedDevices::SimulatedDevices(const bluetooth::Client& client, std::function<void(const std::string& line)> say)
    : m_client(client), m_say(std::move(say)) {}

void SimulatedDevices::setKeyboard(const input::Settings& settings) {
    const bool isExtended = settings.forceExtended ||
                            std::any_of(settings.bindings, settings.bindings + settings.bindingCount,
                                        [](auto& each) { return each.nativeCode >= 11 && each.nativeCode <= 20; });
    std::string line = "keyboard does not play";
    if (settings.keyboardPlays)
        line = std::string("keyboard plays ") +
               (settings.mode == input::PlayMode::byHand ? "by hand, " : "while a game listens, ") +
               std::to_string(settings.bindingCount) + " keys, " + (isExtended ? "extended" : "plain") + " profile";
    if (line == m_keyboard) return;
    m_keyboard = line;
    m_say(line);
}

void SimulatedDevices::setLight(const input::Light& light) {
    m_light = light;
    controllersChanged();
}

void SimulatedDevices::controllersChanged() {
    const auto address = bluetooth::Address::fromBytes(m_light.address);
    const auto there = controllers();
    std::string line;
    if (m_light.action == input::LightAction::set && address && std::ranges::find(*there, *address) != there->end()) {
        char color[8];
        std::snprintf(color, sizeof color, "%02x%02x%02x", m_light.red, m_light.green, m_light.blue);
        line = "light of " + address->forLog() + " shows " + color;
    }
    if (line == m_shown) return;
    m_shown = line;
    if (!line.empty()) m_say(line);
}

std::optional<std::vector<bluetooth::Address>> SimulatedDevices::controllers() const {
    std::vector<bluetooth::Address> addresses;
    for (const auto& device : m_client.devices())
        if (device.isConnected) addresses.push_back(device.address);
    return addresses;
}

} // namespace jvnd
