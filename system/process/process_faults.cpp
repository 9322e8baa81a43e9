#include "system/process/process_faults.h"

#include <atomic>

namespace {

std::atomic<int> left = 0;
std::atomic<int> number = 0;

} // namespace

void seat::failForks(int times, int errorNumber) {
    number = errorNumber;
    left = times;
}

int seat::takeForkFault() {
    int count = left.load(std::memory_order_relaxed);
    while (count > 0)
        if (left.compare_exchange_weak(count, count - 1)) return number;
    return 0;
}
