#include "system/process/spawn.h"

#include "system/process/fork_child.h"
#include "system/process/pidfd.h"
#include "system/process/tool_guard.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <unistd.h>

namespace {

constexpr int firstOfOurs = 3; // the descriptor after the standard three

std::vector<char*> pointers(const std::vector<std::string>& strings) {
    std::vector<char*> result;
    for (const auto& string : strings) result.push_back(const_cast<char*>(string.c_str()));
    result.push_back(nullptr);
    return result;
}

struct Program {
    const char* path;
    char* const* arguments;
    char* const* environment;
    seat::ChildKind kind;
    int output;      // a tool's
    int guarded;     // a tool's: has a byte when it may begin
    int guardedFrom; // the other end
    ::pid_t parent;  // who is to outlive a tool
};

// In the child, where only calls that are safe in a signal handler may be made.
[[noreturn]] void becomeProgram(const Program& program, int report) {
    if (program.kind == seat::ChildKind::Tool) {
        ::setpgid(0, 0);
        ::prctl(PR_SET_PDEATHSIG, SIGINT);
        if (::getppid() != program.parent) ::_exit(127); // too late to be told
        // Not before its guard is there; when we have ended meanwhile there is nobody who could say so.
        ::close(program.guardedFrom);
        char byte = 0;
        if (::read(program.guarded, &byte, 1) != 1) ::_exit(127);
        ::dup2(program.output, STDOUT_FILENO);
        ::dup2(program.output, STDERR_FILENO);
    }
    for (int signal = 1; signal < NSIG; ++signal) ::signal(signal, SIG_DFL);
    if (::dup3(report, firstOfOurs, O_CLOEXEC) < 0 && errno == EINVAL) ::fcntl(firstOfOurs, F_SETFD, FD_CLOEXEC);
    ::close_range(firstOfOurs + 1, ~0u, 0);
    ::sigset_t none;
    ::sigemptyset(&none);
    ::sigprocmask(SIG_SETMASK, &none, nullptr);
    if (::chdir("/") == 0) ::execve(program.path, program.arguments, program.environment);
    const int error = errno;
    [[maybe_unused]] const auto written = ::write(firstOfOurs, &error, sizeof error);
    ::_exit(127);
}

seat::SpawnedChild failed(int error) {
    seat::SpawnedChild child;
    child.error = error;
    return child;
}

} // namespace

int seat::loadingResult(const Descriptor& loading) {
    int error = 0;
    return ::read(loading.get(), &error, sizeof error) == sizeof error ? error : 0;
}

seat::SpawnedChild seat::spawn(ChildKind kind, const std::string& realPath, const std::vector<std::string>& arguments,
                               const std::vector<std::string>& environment, std::chrono::milliseconds timeout) {
    std::vector<std::string> named{realPath};
    named.insert(named.end(), arguments.begin(), arguments.end());
    const auto argumentPointers = pointers(named);
    const auto environmentPointers = pointers(environment);

    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0) return failed(errno);
    Descriptor loading(ends[0]);
    Descriptor report(ends[1]);
    Descriptor output;
    Descriptor written;
    Descriptor guarded;
    Descriptor guardedFrom;
    if (kind == ChildKind::Tool) {
        if (::pipe2(ends, O_CLOEXEC) != 0) return failed(errno);
        output.reset(ends[0]);
        written.reset(ends[1]);
        ::fcntl(output.get(), F_SETFL, O_NONBLOCK);
        if (::pipe2(ends, O_CLOEXEC) != 0) return failed(errno);
        guarded.reset(ends[0]);
        guardedFrom.reset(ends[1]);
    }
    const Program program{.path = realPath.c_str(),
                          .arguments = argumentPointers.data(),
                          .environment = environmentPointers.data(),
                          .kind = kind,
                          .output = written.get(),
                          .guarded = guarded.get(),
                          .guardedFrom = guardedFrom.get(),
                          .parent = ::getpid()};

    const ::pid_t identifier = forkChild();
    if (identifier == 0) becomeProgram(program, report.get());
    if (identifier < 0) return failed(errno);
    // From both sides, so that the group is there whoever comes first.
    if (kind == ChildKind::Tool) ::setpgid(identifier, identifier);
    report.reset();
    written.reset();

    SpawnedChild child;
    child.kind = kind;
    child.identifier = identifier;
    child.output = std::move(output);
    for (const auto& word : named) child.command += (child.command.empty() ? "" : " ") + word;
    child.process.reset(::pidfd_open(identifier, 0));
    if (!child.process) {
        const int error = errno;
        ::kill(identifier, SIGKILL);
        reap(identifier);
        return failed(error);
    }
    if (kind == ChildKind::Tool) {
        child.guard = startToolGuard(identifier, child.process);
        [[maybe_unused]] const auto said = ::write(guardedFrom.get(), "", 1);
    }
    // Loading from a slow disk may take long, and the child is not waited for then.
    ::pollfd wait{loading.get(), POLLIN, 0};
    if (::poll(&wait, 1, static_cast<int>(timeout.count())) <= 0) {
        child.loading = std::move(loading);
    } else if (const int error = loadingResult(loading)) {
        reap(identifier); // it is ending, with nothing left to do
        endToolGuard(child.guard);
        reapToolGuard(child.guard);
        return failed(error);
    }
    return child;
}
