#include "platform/task.h"

#include "platform/log.h"
#include "system/process/child_environment.h"
#include "system/process/children.h"
#include "system/process/installed_tools.h"
#include "system/process/spawn.h"
#include "system/process/tool_listener.h"

#include <csignal>
#include <cstring>

namespace {

// Long enough for any program on a disk that is awake: only then the identifier can say whether it runs.
constexpr std::chrono::milliseconds loadingTimeout{25};

void sayFailure(const std::string& path, int error) {
    NSLog("launch %s: %s", path.c_str(), std::strerror(error));
    seat::tellOfTool(path, std::strerror(error));
}

// One that was interrupted, by us or by its user, has not failed.
bool hasFailed(const seat::ChildEnd& end) { return end.exitCode > 0 || (end.exitCode < 0 && end.signal != SIGINT); }

} // namespace

NS_CLASS_IMPLEMENTATION(NSTask, NSObject)

std::shared_ptr<NSTask> NSTask::launchedTaskWithLaunchPath_arguments(const std::string& path,
                                                                     const std::vector<std::string>& arguments) {
    auto task = alloc();
    task->init();
    auto child =
        seat::spawn(seat::ChildKind::Tool, seat::toolPath(path), arguments, seat::toolEnvironment(), loadingTimeout);
    if (child.identifier == 0) {
        sayFailure(path, child.error);
        return task;
    }
    task->m_processIdentifier = child.identifier;
    seat::tellOfTool(path, {});
    const auto couldNotLoad = [path, launched = std::weak_ptr<NSTask>(task)](int error) {
        sayFailure(path, error);
        if (const auto alive = launched.lock()) alive->m_processIdentifier = 0;
    };
    seat::adoptChild(std::move(child), couldNotLoad, [path](const seat::ChildEnd& end) {
        if (hasFailed(end)) seat::tellOfTool(path, "it " + end.description);
    });
    return task;
}

int platform::kill(int processIdentifier, int signal) { return seat::signalChild(processIdentifier, signal); }
