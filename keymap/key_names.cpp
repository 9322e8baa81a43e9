#include "keymap/key_names.h"

#include "platform/foundation/NSLocalizedString.h"
#include "platform/foundation/NSString.h"

#include <array>
#include <cstdint>

namespace {

struct NamedKey {
    long code;
    const char* name;
    const char* spoken;
};

constexpr std::array<NamedKey, 15> namedKeys{{
    {224, "control", NSLocalizable("Control")},
    {225, "left ⇧", NSLocalizable("Left Shift")},
    {79, "→", NSLocalizable("Right Arrow")},
    {80, "←", NSLocalizable("Left Arrow")},
    {81, "↓", NSLocalizable("Down Arrow")},
    {82, "↑", NSLocalizable("Up Arrow")},
    {226, "⌥", NSLocalizable("Alt")},
    {227, "⌘", NSLocalizable("Command")},
    {44, "space", NSLocalizable("Space")},
    {40, "⏎", NSLocalizable("Return")},
    {229, "right ⇧", NSLocalizable("Right Shift")},
    {42, "⌫", NSLocalizable("Backspace")},
    {57, "⇪", NSLocalizable("Caps Lock")},
    {43, "⇆", NSLocalizable("Tab")},
    {41, "⎋", NSLocalizable("Escape")},
}};

} // namespace

std::string keyDisplayName(long keyCode) {
    if (keyCode == -1) return "(none)";
    const auto usage = static_cast<std::uint8_t>(keyCode);
    if (usage >= 4 && usage <= 29) return std::string(1, static_cast<char>(usage + 61));
    if (usage >= 30 && usage <= 38) return std::string(1, static_cast<char>(usage + 19));
    for (const auto& key : namedKeys)
        if (key.code == keyCode) return key.name;
    return "Key (" + NSStringFromInteger(keyCode) + ")";
}

std::string keySpokenName(long keyCode) {
    for (const auto& key : namedKeys)
        if (key.code == keyCode) return NSLocalizedString(key.spoken);
    return keyCode == -1 ? NSLocalizedString("None") : keyDisplayName(keyCode);
}
