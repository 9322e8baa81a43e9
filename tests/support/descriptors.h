#pragma once

#include <cstddef>
#include <filesystem>

namespace testing_support {

// How many descriptors this process has open.
inline std::size_t openDescriptors() {
    std::size_t count = 0;
    for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) ++count;
    return count;
}

// How many threads this process has.
inline std::size_t runningThreads() {
    std::size_t count = 0;
    for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator("/proc/self/task")) ++count;
    return count;
}

} // namespace testing_support
