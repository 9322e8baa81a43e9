#pragma once

#include <cstddef>

namespace seat {

// Reads `length` bytes, waiting for them at most as long as the descriptor's receive time-out says, counted from the
// call, however often a signal comes in between. What came before the end, an error or the time-out; -1 when nothing
// did and it was not the end.
std::ptrdiff_t receiveAll(int descriptor, void* bytes, std::size_t length);

} // namespace seat
