#include "services/jvninputd/LightKeeper.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace jvninputd {

void LightKeeper::added(const std::string& device, const ControllerFound& found) {
    m_controllers[device] = found;
    apply();
}

void LightKeeper::removed(const std::string& device) {
    const auto found = m_controllers.find(device);
    if (found == m_controllers.end()) return;
    // When it comes back it is lit again, also in the same place.
    if (found->second.lightFolder == m_litFolder) m_litColour.reset();
    m_controllers.erase(found);
    apply();
}

void LightKeeper::want(const std::optional<input::Light>& light) {
    const bool set = light && light->action == input::LightAction::set;
    m_wanted = set ? light : std::nullopt;
    // A colour that is asked for again is set again, since a game may have changed it meanwhile.
    m_litColour.reset();
    apply();
}

// The folder of the controller's lights.
const std::string* LightKeeper::meant() const {
    if (!m_wanted) return nullptr;
    const std::string* onCable = nullptr;
    std::size_t onCables = 0;
    bool addressSeen = false;
    for (const auto& [device, found] : m_controllers) {
        if (found.address && std::memcmp(found.address->data(), m_wanted->address, found.address->size()) == 0) {
            addressSeen = true;
            if (!found.lightFolder.empty()) return &found.lightFolder;
        }
        if (found.bus == input::Bus::usb && !found.lightFolder.empty()) {
            onCable = &found.lightFolder;
            ++onCables;
        }
    }
    return !addressSeen && onCables == 1 ? onCable : nullptr;
}

void LightKeeper::apply() {
    const std::string* folder = meant();
    if (!folder) return;
    const Colour colour{m_wanted->red, m_wanted->green, m_wanted->blue};
    if (m_litColour == colour && m_litFolder == *folder) return;
    m_litColour = colour;
    m_litFolder = *folder;
    m_set(*folder, colour);
}

std::vector<input::Controller> LightKeeper::controllers() const {
    std::vector<input::Controller> list;
    for (const auto& [device, found] : m_controllers) {
        if (!found.address) continue;
        auto controller = input::makeMessage<input::Controller>();
        std::ranges::copy(*found.address, controller.address);
        controller.bus = found.bus;
        controller.present = 1;
        controller.hasLight = !found.lightFolder.empty();
        const auto known = std::ranges::find_if(list, [&](const input::Controller& other) {
            return std::ranges::equal(other.address, controller.address) && other.bus == controller.bus;
        });
        if (known == list.end())
            list.push_back(controller);
        else
            known->hasLight |= controller.hasLight;
    }
    return list;
}

} // namespace jvninputd
