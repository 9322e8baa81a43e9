#include "platform/task.h"

#include "host/foundation/root.h"
#include "host/process/child_environment.h"
#include "host/process/children.h"
#include "host/process/spawn.h"
#include "platform/log.h"

#include <cstring>

namespace {

// Long enough for any program on a disk that is awake: only then the identifier can say whether it runs.
constexpr std::chrono::milliseconds loadingPatience{25};

void logFailure(const std::string& path, int error) { NSLog("launch %s: %s", path.c_str(), std::strerror(error)); }

} // namespace

NS_CLASS_IMPLEMENTATION(NSTask, NSObject)

std::shared_ptr<NSTask> NSTask::launchedTaskWithLaunchPath_arguments(const std::string& path,
                                                                     const std::vector<std::string>& arguments) {
    auto task = alloc();
    task->init();
    auto child = host::spawn(host::hostPath(path), arguments, host::childEnvironment(), loadingPatience);
    if (child.identifier == 0) {
        logFailure(path, child.error);
        return task;
    }
    task->m_processIdentifier = child.identifier;
    host::adoptChild(std::move(child), [path, launched = std::weak_ptr<NSTask>(task)](int error) {
        logFailure(path, error);
        if (const auto alive = launched.lock()) alive->m_processIdentifier = 0;
    });
    return task;
}

int platform::kill(int processIdentifier, int signal) { return host::signalChild(processIdentifier, signal); }
