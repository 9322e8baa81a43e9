#include "system/socket/receive.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <poll.h>
#include <sys/socket.h>
#include <sys/time.h>

namespace {

using Clock = std::chrono::steady_clock; // the system itself times the wait, so the host clock has no say
using std::chrono::microseconds;

constexpr std::chrono::milliseconds shortWait{500};

// Zero is for ever.
microseconds timeout(int descriptor) {
    ::timeval value{};
    ::socklen_t size = sizeof value;
    ::getsockopt(descriptor, SOL_SOCKET, SO_RCVTIMEO, &value, &size);
    return std::chrono::seconds(value.tv_sec) + microseconds(value.tv_usec);
}

// False, and errno as the option itself would set it, when the time is up.
bool waitUntil(int descriptor, bool isForEver, Clock::time_point deadline) {
    ::pollfd entry{descriptor, POLLIN, 0};
    for (;;) {
        auto left = std::max(std::chrono::ceil<std::chrono::nanoseconds>(deadline - Clock::now()),
                             std::chrono::nanoseconds::zero());
        // A wait may end late by a share of its length, so that the last one is a short one.
        if (left > shortWait) left -= left / 8;
        const ::timespec wait{left.count() / 1'000'000'000, left.count() % 1'000'000'000};
        const int ready = ::ppoll(&entry, 1, isForEver ? nullptr : &wait, nullptr);
        if (ready > 0) return true;
        if (ready < 0 && errno != EINTR) return false;
        if (!isForEver && Clock::now() >= deadline) {
            errno = EAGAIN;
            return false;
        }
    }
}

} // namespace

// The option says how long; it is not left to do the waiting, since the system rounds a wait of twenty seconds up to
// twenty-two.
seat::Received seat::receiveAll(int descriptor, void* bytes, std::size_t length) {
    const auto start = Clock::now();
    const auto allowed = timeout(descriptor);
    auto* const into = static_cast<std::uint8_t*>(bytes);
    std::size_t received = 0;
    std::ptrdiff_t result = 0;
    bool isLate = false;
    do {
        result = ::recv(descriptor, into + received, length - received, MSG_DONTWAIT);
        if (result > 0) {
            received += static_cast<std::size_t>(result);
        } else if (result < 0 && errno == EAGAIN) {
            if (!waitUntil(descriptor, allowed == microseconds::zero(), start + allowed)) {
                isLate = errno == EAGAIN;
                break;
            }
        } else if (result == 0 || errno != EINTR) {
            break;
        }
    } while (received < length);
    return {received > 0 ? static_cast<std::ptrdiff_t>(received) : result, isLate};
}
