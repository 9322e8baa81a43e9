#pragma once

#include <cstdint>
#include <string>

namespace jvninputd {

struct Colour {
    std::uint8_t red, green, blue;
    bool operator==(const Colour&) const = default;
};

// Sets the colour of the lights in this folder of the kernel's device tree (a controller's): either three, whose names
// end with their colours, or one of several colours. False when there is none, or when one does not take it, which is
// logged.
bool setLight(const std::string& deviceFolder, Colour colour);

// Whether there are such lights.
bool hasLight(const std::string& deviceFolder);

} // namespace jvninputd
