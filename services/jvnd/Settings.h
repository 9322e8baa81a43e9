#pragma once

#include "daemonlink/JVNControllerType.h"
#include "platform/foundation/NSDictionary.h"
#include "services/bluetooth/Address.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace jvnd {

struct Color {
    std::uint8_t red = 0;
    std::uint8_t green = 0;
    std::uint8_t blue = 0;
    friend bool operator==(Color, Color) = default;
};

// What the preferences file says, as far as it is the daemon's business. A value that is a string counts as its
// number, one that is missing or of no use as the page's default.
struct Settings {
    // A key, by its usage (Keyboard/Keypad page), and the input that it plays (1 to 21).
    struct Binding {
        std::uint16_t usage = 0;
        std::uint8_t input = 0;
        friend bool operator==(Binding, Binding) = default;
    };

    std::int64_t controllerType = JVNControllerTypePS3;
    std::int64_t connectionMode = JVNConnectionModeAutomatic;
    Color color{0x00, 0x4E, 0xFD};
    bool isAmbient = false;
    bool forcesExtended = false;
    std::optional<bluetooth::Address> address; // of the paired controller
    std::vector<Binding> keymap;               // by usage, each once

    friend bool operator==(const Settings&, const Settings&) = default;
};

// nil stands for a file that is not there. `complaint` gets one sentence when a part of it had to be left out.
Settings readSettings(const NSDictionary* values, std::string& complaint);

} // namespace jvnd
