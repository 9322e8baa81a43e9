#include "tests/machine/support/wait_until.h"

#include <thread>

namespace machine {

bool waitUntil(const std::function<bool()>& fact, std::chrono::milliseconds timeout) {
    const auto deadline = std::chrono::steady_clock::now() + timeout;
    while (!fact()) {
        if (std::chrono::steady_clock::now() >= deadline) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return true;
}

} // namespace machine
