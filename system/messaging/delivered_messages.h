#pragma once

#include <cstdint>
#include <optional>

namespace seat {

// How many messages the messaging centers of this process have delivered so far; nothing while none of them runs a
// server. Main thread.
std::optional<std::uint64_t> deliveredMessages();

} // namespace seat
