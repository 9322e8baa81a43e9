#include "system/process/tool_guard.h"

#include "system/process/fork_child.h"
#include "system/process/pidfd.h"

#include <algorithm>
#include <poll.h>
#include <sys/prctl.h>
#include <unistd.h>

namespace {

constexpr int timeToEnd = 500; // milliseconds, as at an end of ours that is in order

// Whoever reads from a pipe of ours must not wait for the guard.
void closeAllBut(int one, int other) {
    const auto [low, high] = std::minmax(one, other);
    if (low > 0) ::close_range(0, static_cast<unsigned>(low) - 1, 0);
    if (high - low > 1) ::close_range(static_cast<unsigned>(low) + 1, static_cast<unsigned>(high) - 1, 0);
    ::close_range(static_cast<unsigned>(high) + 1, ~0u, 0);
}

// In the child, where only calls that are safe in a signal handler may be made. Signals stay blocked: what is sent to
// the group is meant for the tool.
[[noreturn]] void keepGuard(::pid_t tool, int process, int us) {
    // As long as the guard is in it the group is the tool's, whoever else has ended.
    const bool isInGroup = ::setpgid(0, tool) == 0;
    closeAllBut(process, us);
    ::prctl(PR_SET_NAME, "tool guard");
    // Not for the tool: of a process with several threads the one that started the tool may be gone, and the tool with
    // it, before the whole process counts as ended.
    ::pollfd end{us, POLLIN, 0};
    while (::poll(&end, 1, -1) < 0 && errno == EINTR) {
    }
    end.fd = process;
    ::poll(&end, 1, timeToEnd);
    ::pidfd_send_signal(process, SIGKILL, nullptr, 0);
    if (isInGroup) ::kill(0, SIGKILL);
    ::_exit(0);
}

} // namespace

seat::Descriptor seat::startToolGuard(::pid_t tool, const Descriptor& process) {
    const Descriptor us(::pidfd_open(::getpid(), 0));
    if (!us) return Descriptor();
    const ::pid_t guard = forkChild();
    if (guard == 0) keepGuard(tool, process.get(), us.get());
    if (guard < 0) return Descriptor();
    Descriptor kept(::pidfd_open(guard, 0));
    if (!kept) {
        // One that could not be reaped is worse than none.
        ::kill(guard, SIGKILL);
        reap(guard);
    }
    return kept;
}

void seat::endToolGuard(const Descriptor& guard) {
    if (guard) ::pidfd_send_signal(guard.get(), SIGKILL, nullptr, 0);
}

void seat::reapToolGuard(const Descriptor& guard) {
    ::siginfo_t information{};
    while (guard && ::waitid(P_PIDFD, static_cast<::id_t>(guard.get()), &information, WEXITED) < 0 && errno == EINTR) {
    }
}
