#include "tests/support/descriptors.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <sys/types.h>

namespace testing_support {

namespace {

std::size_t entriesOf(const char* folder) {
    return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(folder), {}));
}

} // namespace

std::size_t openDescriptors() { return entriesOf("/proc/self/fd"); }

std::size_t runningThreads() { return entriesOf("/proc/self/task"); }

std::size_t unreapedChildren() {
    std::size_t count = 0;
    for (const auto& thread : std::filesystem::directory_iterator("/proc/self/task")) {
        std::ifstream children(thread.path() / "children");
        for (::pid_t child = 0; children >> child;) ++count;
    }
    return count;
}

int newestChild() {
    ::pid_t newest = 0;
    for (const auto& thread : std::filesystem::directory_iterator("/proc/self/task")) {
        std::ifstream children(thread.path() / "children");
        for (::pid_t child = 0; children >> child;) newest = child;
    }
    return newest;
}

} // namespace testing_support
