#include "tests/support/SystemCalls.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <mutex>

namespace {

using testing_support::SystemCall;

struct Wish {
    int calls = 0;
    int first = 0; // 0: none is to fail
    int times = 0;
    int errorNumber = 0;
    std::function<void(int)> watch;
};

// Set up before anything that has a constructor: calls are made before main(), and after it.
constinit std::atomic<bool> isActive = false;
std::mutex& mutex() {
    static auto& only = *new std::mutex;
    return only;
}
std::array<Wish, testing_support::systemCallCount>& wishes() {
    static auto& all = *new std::array<Wish, testing_support::systemCallCount>;
    return all;
}
Wish& wish(SystemCall call) { return wishes()[static_cast<std::size_t>(call)]; }

} // namespace

namespace testing_support {

bool systemCallFails(SystemCall call, int descriptor) {
    if (!isActive || PeerThread::isOne) return false;
    std::function<void(int)> watch;
    {
        const std::lock_guard lock(mutex());
        Wish& wanted = wish(call);
        ++wanted.calls;
        if (wanted.first > 0 && wanted.calls >= wanted.first && wanted.calls < wanted.first + wanted.times) {
            errno = wanted.errorNumber;
            return true;
        }
        watch = wanted.watch;
    }
    if (watch) watch(descriptor);
    return false;
}

SystemCalls::SystemCalls() {
    useOwnCalls();
    useOwnFlushes();
    clear();
    isActive = true;
}

SystemCalls::~SystemCalls() {
    isActive = false;
    clear();
}

void SystemCalls::failAt(SystemCall call, int n, int errorNumber, int times) {
    const std::lock_guard lock(mutex());
    Wish& wanted = wish(call);
    wanted.calls = 0;
    wanted.first = n;
    wanted.times = times;
    wanted.errorNumber = errorNumber;
}

void SystemCalls::before(SystemCall call, std::function<void(int)> watch) {
    const std::lock_guard lock(mutex());
    wish(call).watch = std::move(watch);
}

int SystemCalls::count(SystemCall call) const {
    const std::lock_guard lock(mutex());
    return wish(call).calls;
}

void SystemCalls::clear() {
    const std::lock_guard lock(mutex());
    wishes().fill({});
}

} // namespace testing_support
