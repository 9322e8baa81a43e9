#include "system/socket/receive.h"

#include <cerrno>
#include <chrono>
#include <cstdint>
#include <optional>
#include <sys/socket.h>
#include <sys/time.h>

namespace {

using Clock = std::chrono::steady_clock; // the system itself times the wait, so the host clock has no say
using std::chrono::microseconds;

microseconds timeout(int descriptor) {
    ::timeval value{};
    ::socklen_t size = sizeof value;
    ::getsockopt(descriptor, SOL_SOCKET, SO_RCVTIMEO, &value, &size);
    return std::chrono::seconds(value.tv_sec) + microseconds(value.tv_usec);
}

void setTimeout(int descriptor, microseconds duration) {
    const ::timeval value{duration.count() / 1'000'000, duration.count() % 1'000'000};
    ::setsockopt(descriptor, SOL_SOCKET, SO_RCVTIMEO, &value, sizeof value);
}

} // namespace

std::ptrdiff_t seat::receiveAll(int descriptor, void* bytes, std::size_t length) {
    const auto start = Clock::now();
    auto* const into = static_cast<std::uint8_t*>(bytes);
    std::size_t received = 0;
    std::optional<microseconds> allowed; // read only once a wait was cut short

    std::ptrdiff_t result;
    for (;;) {
        result = ::recv(descriptor, into + received, length - received, MSG_WAITALL);
        if (result > 0) received += static_cast<std::size_t>(result);
        if (result == 0 || received == length) break;
        // A signal, or the time-out, or an end after some bytes: the system says the same for all of them when some
        // bytes came, so the time and another read tell them apart.
        if (result < 0 && errno != EINTR) break;
        if (!allowed) allowed = timeout(descriptor);
        if (*allowed == microseconds::zero()) continue;
        const auto left = *allowed - std::chrono::duration_cast<microseconds>(Clock::now() - start);
        if (left <= microseconds::zero()) break;
        setTimeout(descriptor, left);
    }
    const int error = errno;
    if (allowed && *allowed != microseconds::zero()) setTimeout(descriptor, *allowed);
    errno = error;
    return received > 0 ? static_cast<std::ptrdiff_t>(received) : result;
}
