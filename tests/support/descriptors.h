#pragma once

#include <cstddef>

namespace testing_support {

// How many descriptors the seat under test has open.
std::size_t openDescriptors();

// How many threads this process has.
std::size_t runningThreads();

// How many children this process has that are not reaped, running ones among them.
std::size_t unreapedChildren();

// The one that was started last of them; 0: there is none.
inline ::pid_t newestChild() {
    ::pid_t newest = 0;
    for (const auto& thread : std::filesystem::directory_iterator("/proc/self/task")) {
        std::ifstream children(thread.path() / "children");
        for (::pid_t child = 0; children >> child;) newest = child;
    }
    return newest;
}

} // namespace testing_support
