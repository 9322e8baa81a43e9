#pragma once

#include <cstddef>
#include <filesystem>
#include <fstream>
#include <sys/types.h>

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

// How many children this process has that are not reaped, running ones among them.
inline std::size_t unreapedChildren() {
    std::size_t count = 0;
    for (const auto& thread : std::filesystem::directory_iterator("/proc/self/task")) {
        std::ifstream children(thread.path() / "children");
        for (::pid_t child = 0; children >> child;) ++count;
    }
    return count;
}

} // namespace testing_support
