#pragma once

#include <cerrno>

namespace seat {

// Makes a system call anew for as long as a signal interrupts it. What it gave at last comes back: -1, with errno set,
// for a failure.
template <class Call> auto uninterrupted(Call call) {
    for (;;) {
        const auto result = call();
        if (result != -1 || errno != EINTR) return result;
    }
}

} // namespace seat
