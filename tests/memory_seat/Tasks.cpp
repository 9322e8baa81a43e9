#include "tests/memory_seat/Tasks.h"

#include "platform/log.h"
#include "platform/task.h"

#include <set>

namespace {

struct World {
    std::set<std::string> tools;
    std::vector<memory_seat::Task> tasks;
    int lastIdentifier = 1000;
};
World& world() {
    static auto* const world = new World;
    return *world;
}

} // namespace

void memory_seat::installTool(const std::string& path) { world().tools.insert(path); }
const std::vector<memory_seat::Task>& memory_seat::tasks() { return world().tasks; }
void memory_seat::clearTasks() {
    world().tools.clear();
    world().tasks.clear();
}

NS_CLASS_IMPLEMENTATION(NSTask, NSObject)

std::shared_ptr<NSTask> NSTask::launchedTaskWithLaunchPath_arguments(const std::string& path,
                                                                     const std::vector<std::string>& arguments) {
    auto task = alloc();
    task->init();
    if (!world().tools.contains(path)) {
        NSLog("launch %s: no such program", path.c_str());
        return task;
    }
    task->m_processIdentifier = ++world().lastIdentifier;
    world().tasks.push_back({task->m_processIdentifier, path, arguments, {}});
    return task;
}

int platform::kill(int processIdentifier, int signal) {
    for (auto& task : world().tasks)
        if (task.identifier == processIdentifier) {
            task.signals.push_back(signal);
            return 0;
        }
    return -1;
}
