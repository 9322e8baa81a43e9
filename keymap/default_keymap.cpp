#include "keymap/default_keymap.h"

#include <array>
#include <utility>

std::shared_ptr<NSMutableDictionary> defaultKeymap() {
    static constexpr std::array<std::pair<const char*, int>, 11> bindings{{
        {"26", 3},  // W: D-pad up
        {"4", 2},   // A: D-pad left
        {"22", 4},  // S: D-pad down
        {"7", 1},   // D: D-pad right
        {"12", 8},  // I: face button Y
        {"13", 7},  // J: face button X
        {"14", 5},  // K: face button A
        {"15", 6},  // L: face button B
        {"31", 9},  // 2: left shoulder
        {"37", 10}, // 8: right shoulder
        {"41", 21}, // Escape: Pause
    }};
    const auto keymap = NSMutableDictionary::dictionary();
    for (const auto& [key, native] : bindings) keymap->setObject_forKey(NSNumber::numberWithInt(native), key);
    return keymap;
}
