#pragma once

#include <chrono>

namespace seat {

// How long the toolkit, and with it the window, is let wait for a bus: what is well answers in less than a millisecond.
struct RelayTimeouts {
    // From the connection to the bus on. Without its greeting the toolkit does without accessibility at first: it has
    // more time, most of it before the toolkit asks.
    std::chrono::milliseconds greeting{75};
    // For any call; for the greeting, too, from when the toolkit asks for it.
    std::chrono::milliseconds answer{50};
};

} // namespace seat
