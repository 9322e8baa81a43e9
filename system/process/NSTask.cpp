#include "platform/task.h"

#include "kit/dispatch/run_loop_sources.h"
#include "platform/log.h"
#include "system/messaging/delivered_messages.h"
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

// What a tool has sent last may reach us after its end.
constexpr double secondsForLastWords = 1;

void sayFailure(const std::string& path, int error) {
    NSLog("launch %s: %s", path.c_str(), std::strerror(error));
    seat::tellOfTool(path, std::strerror(error));
}

// One that was interrupted, by us or by its user, has not failed.
bool hasFailed(const seat::ChildEnd& end) { return end.exitCode > 0 || (end.exitCode < 0 && end.signal != SIGINT); }

// Whoever runs a server while it starts a tool waits for what that reports: one that ends well and has reported nothing
// has not done its work, and nothing else would ever say so.
void expectReport(const std::string& path, std::uint64_t deliveredBefore, const std::weak_ptr<NSTask>& task) {
    seat::addTimer(secondsForLastWords, [path, deliveredBefore, task] {
        if (seat::deliveredMessages() != deliveredBefore) return; // or nobody waits any more
        const char* const reason = "it ended with 0 and has reported nothing";
        NSLog("run %s: %s", path.c_str(), reason);
        if (!task.expired()) seat::tellOfTool(path, reason); // no other has been started in its place
    });
}

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
    const auto delivered = seat::deliveredMessages();
    seat::adoptChild(std::move(child), couldNotLoad,
                     [path, delivered, launched = std::weak_ptr<NSTask>(task)](const seat::ChildEnd& end) {
                         if (hasFailed(end)) return seat::tellOfTool(path, "it " + end.description);
                         if (end.exitCode == 0 && !end.wasSignalled && delivered)
                             expectReport(path, *delivered, launched);
                     });
    return task;
}

int platform::kill(int processIdentifier, int signal) { return seat::signalChild(processIdentifier, signal); }
