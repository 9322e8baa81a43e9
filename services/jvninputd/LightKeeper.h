#pragma once

#include "services/input_protocol/messages.h"
#include "services/jvninputd/Hotplug.h"
#include "services/jvninputd/lights.h"

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace jvninputd {

// The controllers that are plugged in, and the colour that one of them is to have.
class LightKeeper {
public:
    // `set` writes a colour to the lights in a folder of the device tree.
    explicit LightKeeper(std::function<void(const std::string& folder, Colour)> set) : m_set(std::move(set)) {}

    // The same device may be added again, when its lights have come.
    void added(const std::string& device, const ControllerFound& found);
    void removed(const std::string& device);

    // What is wanted from now on; nothing, or leaveAlone, leaves all lights as they are.
    void want(const std::optional<input::Light>& light);

    // Each controller with an address, once for each bus on which it is there.
    std::vector<input::Controller> controllers() const;

private:
    const std::string* meant() const;
    void apply();

    std::function<void(const std::string&, Colour)> m_set;
    std::map<std::string, ControllerFound> m_controllers;
    std::optional<input::Light> m_wanted;
    // What has been set: the same again is not, as a game may have changed it since.
    std::string m_litFolder;
    std::optional<Colour> m_litColour;
};

} // namespace jvninputd
