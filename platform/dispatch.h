#pragma once

#include <functional>

// Queues of blocks. The main queue runs its blocks in order on the main thread's run loop; a global queue runs each
// block on a worker thread, many at once (a block that waits does not hold up the others). Blocks still waiting when
// the process ends are dropped; none runs after main() has returned.

class DispatchQueue; // opaque
using dispatch_queue_t = DispatchQueue*;

inline constexpr long DISPATCH_QUEUE_PRIORITY_DEFAULT = 0;

// The same queue at each call.
dispatch_queue_t dispatch_get_main_queue();
// There is one, whatever the priority; `flags` is 0.
dispatch_queue_t dispatch_get_global_queue(long priority, unsigned long flags);
// Any thread; never waits. nil and an empty block do nothing. What the block holds is released right after its run, on
// the thread that ran it.
void dispatch_async(dispatch_queue_t queue, std::function<void()> block);

// True on the thread that runs the main queue, before it runs anything, too. Any thread.
bool dispatch_is_main_thread();
