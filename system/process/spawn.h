#pragma once

#include "system/files/Descriptor.h"

#include <chrono>
#include <string>
#include <sys/types.h>
#include <vector>

namespace seat {

enum class ChildKind {
    Tool,    // ours: a process group of its own, which does not outlive us, its output ours to read
    Program, // the user's: it outlives us, and writes where we do
};

struct SpawnedChild {
    ChildKind kind = ChildKind::Tool;
    ::pid_t identifier = 0; // 0: it could not be started, and there is no child
    std::string command;    // the program and its arguments, for people
    int error = 0;          // why not
    Descriptor process;     // readable when the child has ended
    // Open while the program is still being loaded: readable with an error number when that fails, at its end when the
    // program runs. None when the program runs already.
    Descriptor loading;
    Descriptor output; // a tool's: what it writes, not waited for
    Descriptor guard;  // a tool's: another child, to be ended once the tool has been reaped (tool_guard.h)
};

// Starts the program at a real path with the arguments that follow its name: default signal dispositions, an empty
// mask, the folder "/", no descriptor but the standard three. Waits for the program to be loaded no longer than
// `timeout`. A tool does not begin before it is guarded. Main thread: a tool is interrupted when the thread that
// started it ends.
SpawnedChild spawn(ChildKind kind, const std::string& realPath, const std::vector<std::string>& arguments,
                   const std::vector<std::string>& environment, std::chrono::milliseconds timeout);

// What `loading` says once it is readable: the error number, or 0.
int loadingResult(const Descriptor& loading);

} // namespace seat
