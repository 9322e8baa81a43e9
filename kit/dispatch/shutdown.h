#pragma once

#include <chrono>

namespace seat {

// How long shutdownDispatch() waits for blocks that are running.
inline constexpr std::chrono::milliseconds shutdownGrace{200};

// From now on no block of a global or operation queue starts; those that wait are dropped. Waits for the running ones,
// but not longer than the grace: a block may sit in a receive of 20 seconds. True when no worker is left. May be called
// again.
bool shutdownDispatch(std::chrono::milliseconds grace = shutdownGrace);

// The last thing in main(): `return seat::finishProcess(code);`. Shuts down; when a block is still waiting then, ends
// the process here and now with `code`, after flushing the standard streams, so that the block can never wake up
// among destroyed statics. Otherwise gives back `code`. exit() does the same for a program that has used a queue, but
// only among the handlers that it runs.
int finishProcess(int code);

} // namespace seat
