// Time, the main thread and the locale.

#include "kit/seat.h"

#include <atomic>
#include <chrono>
#include <thread>

namespace {

std::atomic<const seat::ClockSource*> replacement = nullptr;
const std::thread::id mainThread = std::this_thread::get_id(); // programs are loaded on it

} // namespace

void seat::setClockSource(const ClockSource* source) { replacement = source; }

bool seat::clockIsHeld() { return replacement != nullptr; }

int platform::gettimeofday(timeval* now) {
    if (!now) return 0;
    if (const auto* const source = replacement.load()) {
        *now = source->timeOfDay();
        return 0;
    }
    using std::chrono::microseconds;
    const auto since = std::chrono::system_clock::now().time_since_epoch();
    const auto count = std::chrono::duration_cast<microseconds>(since).count();
    *now = {count / 1'000'000, count % 1'000'000};
    return 0;
}

double platform::CACurrentMediaTime() {
    if (const auto* const source = replacement.load()) return source->mediaTime();
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

bool seat::isMainThread() { return std::this_thread::get_id() == mainThread; }

// Nobody sets a locale here, so all numbers are plain.
seat::PlainNumbers::PlainNumbers() = default;
seat::PlainNumbers::~PlainNumbers() { m_previous = nullptr; }
