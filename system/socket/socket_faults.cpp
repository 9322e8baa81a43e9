#include "system/socket/socket_faults.h"

#include <atomic>

namespace {

struct Fault {
    std::atomic<int> left = 0;
    std::atomic<int> errorNumber = 0;
};
constinit Fault faults[seat::socketCallCount];

Fault& fault(seat::SocketCall call) { return faults[static_cast<std::size_t>(call)]; }

} // namespace

void seat::failSocketCalls(SocketCall call, int times, int errorNumber) {
    fault(call).errorNumber = errorNumber;
    fault(call).left = times;
}

void seat::clearSocketFaults() {
    for (auto& each : faults) each.left = 0;
}

int seat::takeSocketFault(SocketCall call) {
    auto& wanted = fault(call);
    int left = wanted.left.load(std::memory_order_relaxed);
    while (left > 0)
        if (wanted.left.compare_exchange_weak(left, left - 1)) return wanted.errorNumber;
    return 0;
}
