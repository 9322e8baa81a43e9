#pragma once

#include "services/common/EventLoop.h"
#include "system/files/Descriptor.h"
#include "system/process/pidfd.h"

#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <fstream>
#include <iterator>
#include <optional>
#include <string>
#include <sys/epoll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace testing_support {

// The real tool as a child of the test, watched by the test's loop.
class ToolProcess {
public:
    ToolProcess(services::EventLoop& loop, std::vector<std::string> arguments, const std::string& errorFile)
        : m_loop(loop), m_errorFile(errorFile) {
        std::vector<char*> pointers;
        for (auto& argument : arguments) pointers.push_back(argument.data());
        pointers.push_back(nullptr);
        m_identifier = ::fork();
        if (m_identifier == 0) {
            ::prctl(PR_SET_PDEATHSIG, SIGKILL);
            ::dup2(::open(errorFile.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), STDERR_FILENO);
            ::close_range(3, ~0U, 0);
            ::execv(pointers[0], pointers.data());
            ::_exit(127);
        }
        m_process.reset(::pidfd_open(m_identifier, 0));
        m_watch = loop.watch(m_process.get(), EPOLLIN, [this](std::uint32_t) { reap(); });
    }
    ~ToolProcess() {
        if (m_code) return;
        ::kill(m_identifier, SIGKILL);
        ::waitpid(m_identifier, nullptr, 0);
    }
    ToolProcess(const ToolProcess&) = delete;
    ToolProcess& operator=(const ToolProcess&) = delete;

    ::pid_t identifier() const { return m_identifier; }
    void interrupt() {
        m_interrupted = std::chrono::steady_clock::now();
        ::kill(m_identifier, SIGINT);
    }
    // From the interruption to the end.
    std::chrono::milliseconds endTime() const {
        return std::chrono::duration_cast<std::chrono::milliseconds>(m_ended - m_interrupted);
    }
    bool isOver() const { return m_code.has_value(); }
    // The exit code, or minus the signal; waits for it. -1000: it does not end.
    int code() {
        m_loop.runUntil([this] { return isOver(); });
        return m_code.value_or(-1000);
    }
    std::string errors() const {
        std::ifstream file(m_errorFile);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    // How often it has been woken up so far.
    long wakeUps() const { return number("status", "voluntary_ctxt_switches:"); }
    // Bytes that are its alone.
    long privateMemory() const {
        return 1024 * (number("smaps_rollup", "Private_Clean:") + number("smaps_rollup", "Private_Dirty:"));
    }

private:
    long number(const std::string& file, const std::string& name) const {
        std::ifstream stream("/proc/" + std::to_string(m_identifier) + "/" + file);
        std::string word;
        long value = -1;
        while (stream >> word)
            if (word == name) stream >> value;
        return value;
    }
    void reap() {
        int status = 0;
        ::waitpid(m_identifier, &status, 0);
        m_ended = std::chrono::steady_clock::now();
        m_code = WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
        m_watch.reset();
    }

    services::EventLoop& m_loop;
    std::string m_errorFile;
    ::pid_t m_identifier = 0;
    seat::Descriptor m_process;
    services::EventLoop::Source m_watch;
    std::optional<int> m_code;
    std::chrono::steady_clock::time_point m_interrupted;
    std::chrono::steady_clock::time_point m_ended;
};

} // namespace testing_support
