#pragma once

#include <string>
#include <vector>

namespace memory_seat {

// What stands for a child: the path it was launched by, and what it was sent.
struct Task {
    int identifier = 0;
    std::string path;
    std::vector<std::string> arguments;
    std::vector<int> signals;
};

// A path at which a program stands; launching any other fails. Main thread.
void installTool(const std::string& path);
// Every child since the last call of clearTasks(), which also takes the tools away.
const std::vector<Task>& tasks();
void clearTasks();

} // namespace memory_seat
