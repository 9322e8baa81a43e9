#include "tests/support/descriptors.h"

#include "tests/memory_seat/Sockets.h"

namespace testing_support {

std::size_t openDescriptors() { return memory_seat::openDescriptors(); }

// Nothing tells here, and there are no children.
std::size_t runningThreads() { return 0; }
std::size_t unreapedChildren() { return 0; }
int newestChild() { return 0; }

} // namespace testing_support
