#pragma once

#include <algorithm>
#include <time.h>

namespace testing_support {

// Whether what is measured here is what the user gets.
#if !defined(__OPTIMIZE__) || defined(__SANITIZE_THREAD__) || defined(__SANITIZE_ADDRESS__)
inline constexpr bool timesCount = false;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer) || __has_feature(undefined_behavior_sanitizer)
inline constexpr bool timesCount = false;
#else
inline constexpr bool timesCount = true;
#endif
#else
inline constexpr bool timesCount = true;
#endif

// Milliseconds that this thread has worked, however busy the machine is with other things.
inline double workedMilliseconds() {
    timespec time{};
    ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) * 1e-6;
}

// The least that one of `runs` runs took: the first may have to fetch its memory.
template <class Work> double leastMilliseconds(int runs, Work&& work) {
    double least = 1e9;
    for (int run = 0; run < runs; ++run) {
        const double start = workedMilliseconds();
        work();
        least = std::min(least, workedMilliseconds() - start);
    }
    return least;
}

} // namespace testing_support
