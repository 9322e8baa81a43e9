#pragma once

#include <cstddef>

namespace seat {

struct Received {
    std::ptrdiff_t count;
    bool isLate; // it was the time-out that ended it
};

// Reads `length` bytes, waiting for them at most as long as the descriptor's receive time-out says, counted from the
// call, however often a signal comes in between. The count is of what came before the end, an error or the time-out;
// -1, with errno, when nothing did and it was not the end.
Received receiveAll(int descriptor, void* bytes, std::size_t length);

} // namespace seat
