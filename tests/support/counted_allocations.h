#pragma once

#include <atomic>
#include <cstdlib>
#include <new>

// Takes the place of the allocator of the program whose one source includes this, and counts what is asked of it.

namespace testing_support {
inline std::atomic<long> allocations = 0; // of all threads
inline thread_local long allocationsOfThisThread = 0;
} // namespace testing_support

void* operator new(std::size_t size) {
    ++testing_support::allocations;
    ++testing_support::allocationsOfThisThread;
    if (void* const block = std::malloc(size ? size : 1)) return block;
    throw std::bad_alloc();
}
void operator delete(void* block) noexcept { std::free(block); }
void operator delete(void* block, std::size_t) noexcept { std::free(block); }
