#include "keymap/key_names.h"

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
    {224, "control", "Control"},
    {225, "left ⇧", "Left Shift"},
    {79, "→", "Right Arrow"},
    {80, "←", "Left Arrow"},
    {81, "↓", "Down Arrow"},
    {82, "↑", "Up Arrow"},
    {226, "⌥", "Alt"},
    {227, "⌘", "Command"},
    {44, "space", "Space"},
    {40, "⏎", "Return"},
    {229, "right ⇧", "Right Shift"},
    {42, "⌫", "Backspace"},
    {57, "⇪", "Caps Lock"},
    {43, "⇆", "Tab"},
    {41, "⎋", "Escape"},
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
        if (key.code == keyCode) return key.spoken;
    return keyCode == -1 ? "None" : keyDisplayName(keyCode);
}
