#pragma once

#include "platform/runtime/NSObject.h"

#include <string>
#include <vector>

inline constexpr int SIGINT_NUMBER = 2;

// A child process, started with default signal dispositions, an empty signal mask and no descriptor of ours but the
// standard three. A child that ends is reaped at once. The object's end does not end the child.
class NSTask final : public NSObject {
    NS_CLASS(NSTask)

    // Starts the tool and does not wait for it, but up to 25 ms for the answer whether it can be started. One that
    // cannot gives a task whose identifier is 0, and a logged reason; an answer that comes later takes the identifier
    // back. Main thread.
    static std::shared_ptr<NSTask> launchedTaskWithLaunchPath_arguments(const std::string& path,
                                                                        const std::vector<std::string>& arguments);

    // 0 until the child has started and after a failed launch; kept after the child's end.
    int processIdentifier() const { return m_processIdentifier; }

private:
    int m_processIdentifier = 0;
};

namespace platform {

// Signals a child of ours that has not been reaped; for anything else -1, and nobody gets a signal.
int kill(int processIdentifier, int signal);

} // namespace platform
