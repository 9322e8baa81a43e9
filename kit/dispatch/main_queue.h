#pragma once

// The main queue as the run loop sees it.

#include <cstddef>
#include <functional>

namespace seat {

// `wake` is called when the first block is queued since the last drain, on whatever thread queues it, and asks the run
// loop to call drainMainQueue() soon; it must not call it itself. When something waits already it is called at once. An
// empty function removes it. What a drain leaves behind has been announced by then.
void setWakeMainQueue(std::function<void()> wake);

// Runs the blocks that are in the queue now, in order, and says how many it ran. What they queue waits for the next
// call. Main thread only; a block may call it again (a run loop within a block).
std::size_t drainMainQueue();

bool mainQueueIsEmpty();

void queueOnMain(std::function<void()> block);

} // namespace seat
