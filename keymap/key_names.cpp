#include "keymap/key_names.h"

#include "platform/foundation/NSString.h"

#include <array>
#include <cstdint>

namespace {

struct NamedKey {
    long code;
    const char* name;
};

constexpr std::array<NamedKey, 15> namedKeys{{
    {224, "control"},
    {225, "left ⇧"},
    {79, "→"},
    {80, "←"},
    {81, "↓"},
    {82, "↑"},
    {226, "⌥"},
    {227, "⌘"},
    {44, "space"},
    {40, "⏎"},
    {229, "right ⇧"},
    {42, "⌫"},
    {57, "⇪"},
    {43, "⇆"},
    {41, "⎋"},
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
