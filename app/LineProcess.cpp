#include "app/LineProcess.h"

#include "system/process/child_environment.h"
#include "system/process/pidfd.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <utility>

namespace {

using Clock = std::chrono::steady_clock;

struct Pipe {
    seat::Descriptor readEnd = seat::Descriptor();
    seat::Descriptor writeEnd = seat::Descriptor();
};

Pipe makePipe() {
    int ends[2] = {-1, -1};
    if (pipe2(ends, O_CLOEXEC) != 0) return {};
    return {seat::Descriptor(ends[0]), seat::Descriptor(ends[1])};
}

std::vector<char*> pointers(std::vector<std::string>& strings) {
    std::vector<char*> result;
    for (auto& string : strings) result.push_back(string.data());
    result.push_back(nullptr);
    return result;
}

int waitForEnd(pid_t child) {
    int status = 0;
    while (waitpid(child, &status, 0) == -1 && errno == EINTR) {
    }
    return status;
}

// False when it has not ended by then.
bool reap(pid_t child, const seat::Descriptor& process, double seconds) {
    pollfd entry{process.get(), POLLIN, 0};
    if (poll(&entry, 1, static_cast<int>(seconds * 1000)) == 0) return false;
    waitForEnd(child);
    return true;
}

} // namespace

std::unique_ptr<app::LineProcess> app::LineProcess::start(const std::string& program,
                                                          const std::vector<std::string>& arguments,
                                                          std::function<void(const std::string& line)> heard) {
    Pipe input = makePipe();
    Pipe output = makePipe();
    if (!input.readEnd || !output.readEnd) return nullptr;

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, input.readEnd.get(), 0);
    posix_spawn_file_actions_adddup2(&actions, output.writeEnd.get(), 1);
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    sigset_t defaults;
    sigfillset(&defaults);
    posix_spawnattr_setsigdefault(&attributes, &defaults);
    sigset_t mask;
    sigemptyset(&mask);
    posix_spawnattr_setsigmask(&attributes, &mask);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK);
    std::vector<std::string> words{program};
    words.insert(words.end(), arguments.begin(), arguments.end());
    auto environment = seat::childEnvironment();

    std::unique_ptr<LineProcess> process(new LineProcess);
    const int error = posix_spawn(&process->m_child, program.c_str(), &actions, &attributes, pointers(words).data(),
                                  pointers(environment).data());
    posix_spawn_file_actions_destroy(&actions);
    posix_spawnattr_destroy(&attributes);
    if (error != 0) {
        process->m_child = 0;
        return nullptr;
    }
    process->m_process.reset(::pidfd_open(process->m_child, 0));
    if (!process->m_process) {
        kill(process->m_child, SIGKILL);
        waitForEnd(std::exchange(process->m_child, 0));
        return nullptr;
    }
    process->m_heard = std::move(heard);
    process->m_input = std::move(input.writeEnd);
    process->m_output = std::move(output.readEnd);
    fcntl(process->m_output.get(), F_SETFL, O_NONBLOCK);
    process->m_source = seat::addReadableSource(process->m_output.get(), [self = process.get()] {
        if (!self->readSome()) seat::removeSource(std::exchange(self->m_source, 0));
    });
    process->m_endSource =
        seat::addReadableSource(process->m_process.get(), [self = process.get()] { self->reapEnded(); });
    return process;
}

void app::LineProcess::reapEnded() {
    readSome(); // its last words
    seat::removeSource(std::exchange(m_source, 0));
    seat::removeSource(std::exchange(m_endSource, 0));
    const int status = waitForEnd(std::exchange(m_child, 0));
    const std::string how = WIFSIGNALED(status) ? "was ended by signal " + std::to_string(WTERMSIG(status))
                                                : "ended with " + std::to_string(WEXITSTATUS(status));
    // Whoever hears it may destroy this object.
    if (const auto ended = m_ended) ended(how);
}

app::LineProcess::~LineProcess() {
    seat::removeSource(m_source);
    seat::removeSource(m_endSource);
    if (m_child == 0) return;
    m_input.reset();
    kill(m_child, SIGTERM);
    if (reap(m_child, m_process, 1)) return;
    kill(m_child, SIGKILL);
    reap(m_child, m_process, 10);
}

bool app::LineProcess::readSome() {
    char bytes[4096];
    ssize_t got = 0;
    while ((got = read(m_output.get(), bytes, sizeof bytes)) > 0) {
        m_partial.append(bytes, static_cast<std::size_t>(got));
        for (auto end = m_partial.find('\n'); end != std::string::npos; end = m_partial.find('\n')) {
            const std::string line = m_partial.substr(0, end);
            m_partial.erase(0, end + 1);
            m_lastLine = line;
            if (m_heard) m_heard(line);
        }
    }
    return got != 0;
}

bool app::LineProcess::waitForLine(const std::string& line, double seconds) {
    const auto end = Clock::now() + std::chrono::duration<double>(seconds);
    for (;;) {
        const bool goesOn = readSome();
        if (m_lastLine == line) return true;
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now()).count();
        if (!goesOn || left <= 0) return false;
        pollfd entry{m_output.get(), POLLIN, 0};
        poll(&entry, 1, static_cast<int>(left));
    }
}
