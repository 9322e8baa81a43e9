#include "app/tour/key_names.h"

#include <utility>

long app::keyNamed(std::string_view name) {
    static constexpr std::pair<std::string_view, long> keys[] = {
        {"return", 40},        {"escape", 41},      {"backspace", 42}, {"tab", 43},
        {"space", 44},         {"minus", 45},       {"capslock", 57},  {"home", 74},
        {"pageup", 75},        {"delete", 76},      {"end", 77},       {"pagedown", 78},
        {"right", 79},         {"left", 80},        {"down", 81},      {"up", 82},
        {"control", 224},      {"shift", 225},      {"alt", 226},      {"gui", 227},
        {"rightcontrol", 228}, {"rightshift", 229}, {"rightalt", 230}, {"rightgui", 231},
    };
    if (name.size() == 1) {
        if (name[0] >= 'a' && name[0] <= 'z') return 4 + (name[0] - 'a');
        if (name[0] >= '1' && name[0] <= '9') return 30 + (name[0] - '1');
        if (name[0] == '0') return 39;
    }
    for (const auto& [known, usage] : keys)
        if (known == name) return usage;
    return 0;
}
