#pragma once

#include "services/jvninputd/Devices.h"
#include "services/jvninputd/Keymap.h"

#include <algorithm>
#include <cstdint>
#include <vector>

namespace jvninputd {

// What a Player knows of one keyboard.
struct PlayedKeyboard {
    // Where a key that went down while the keyboard was taken has gone, and will go when it comes up, whatever the
    // keymap says by then.
    struct Route {
        std::uint16_t key;
        enum class To : std::uint8_t { pad, desktop, nowhere } to;
        native::Code input; // of the pad
    };

    bool open = false;
    bool taken = false;
    KeySet down;
    std::vector<Route> routes;

    // The end of routes when the key has none.
    std::vector<Route>::iterator routeOf(std::uint16_t key) { return std::ranges::find(routes, key, &Route::key); }
};

} // namespace jvninputd
