// jvnd: the daemon of a user's session. See options.cpp for its command line, Daemon.h for what it does.

#include "services/common/log.h"
#include "services/common/root_folder.h"
#include "services/jvnd/Daemon.h"
#include "services/jvnd/exit_codes.h"
#include "services/jvnd/options.h"
#include "services/jvnd/say_line.h"
#include "system/process/standard_descriptors.h"

#include <csignal>
#include <cstdio>
#include <sys/epoll.h>
#include <sys/stat.h>
#include <systemd/sd-daemon.h>
#include <unistd.h>

namespace {

using namespace jvnd;

constexpr const char* controlSocket = "/Library/Caches/jvncontrol.sock";

// A simulated daemon belongs to whoever has started it with a pipe.
services::EventLoop::Source endWithInput(services::EventLoop& loop) {
    struct ::stat input;
    if (::fstat(STDIN_FILENO, &input) != 0 || !S_ISFIFO(input.st_mode)) return nullptr;
    return loop.watch(STDIN_FILENO, EPOLLIN, [&loop](std::uint32_t) {
        char bytes[256];
        if (::read(STDIN_FILENO, bytes, sizeof bytes) <= 0) loop.quit(exitSuccess);
    });
}

constexpr int endSignals[] = {SIGTERM, SIGINT, SIGHUP};

// What comes before the loop runs waits for it: the socket must not stay behind.
void holdEndSignals() {
    ::sigset_t signals;
    ::sigemptyset(&signals);
    for (const int signal : endSignals) ::sigaddset(&signals, signal);
    ::sigprocmask(SIG_BLOCK, &signals, nullptr);
}

int serve(const CommandLine& line, const std::string& root, ControlPlace& place) {
    services::EventLoop loop;
    std::vector<services::EventLoop::Source> sources;
    for (const int signal : endSignals) sources.push_back(loop.onSignal(signal, [&loop] { loop.quit(exitSuccess); }));
    if (line.simulates) sources.push_back(endWithInput(loop));

    Daemon::Options options{.root = root, .simulates = line.simulates, .trace = {}};
    if (!line.inputSocket.empty()) options.inputSocket = line.inputSocket;
    if (line.traces) options.trace = sayLine;
    Daemon daemon(loop, place, std::move(options));
    ::sd_notify(0, "READY=1");
    if (line.traces) sayLine("ready");
    return loop.run();
}

int fail(const std::string& problem, int code) {
    services::log("%s", problem.c_str());
    return code;
}

} // namespace

int main(int argc, char** argv) {
    seat::openMissingStandardDescriptors();
    ::signal(SIGPIPE, SIG_IGN);
    services::setLogName("jvnd");
    const auto line = parseCommandLine(std::span<const char* const>(argv, static_cast<std::size_t>(argc)).subspan(1));
    if (!line.problem.empty()) return fail(line.problem + "; see jvnd --help", exitUsage);
    if (line.showsHelp) return std::fputs(helpText().c_str(), stdout) < 0;
    if (line.showsVersion) return std::puts("jvnd " JOYVANE_VERSION) < 0;

    const auto root = services::rootFolder(line.root);
    if (root.empty()) return fail("the user has no home folder", exitFailure);
    holdEndSignals();
    ControlPlace place;
    if (const auto problem = place.open(root + controlSocket); !problem.empty()) return fail(problem, exitFailure);
    // Started with the session, and nobody has ever opened the page: the socket waits for who does.
    if (place.isManaged() && !place.hasCaller() && ::access((root + preferencesFile).c_str(), F_OK) != 0) {
        ::sd_notify(0, "READY=1"); // or the manager takes the end for a failure
        return exitSuccess;
    }
    const int code = serve(line, root, place);
    return code == exitRestart ? place.restart(argv) : code;
}
