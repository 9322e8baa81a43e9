#include "tests/machine/support/Program.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <grp.h>
#include <pwd.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace machine {
namespace {

struct Pipe {
    Pipe() {
        if (::pipe2(ends.data(), O_CLOEXEC) != 0) throw std::system_error(errno, std::generic_category(), "pipe");
    }
    std::array<int, 2> ends{};
};

std::vector<char*> pointers(std::vector<std::string>& texts) {
    std::vector<char*> result;
    for (auto& text : texts) result.push_back(text.data());
    result.push_back(nullptr);
    return result;
}

} // namespace

Program::Program(const std::vector<std::string>& command, uid_t user, const std::vector<std::string>& environment) {
    auto words = command;
    const auto arguments = pointers(words);
    const auto* person = ::getpwuid(user);
    if (!person) throw std::system_error(ENOENT, std::generic_category(), "a user of the machine");
    std::vector<std::string> variables{"PATH=/usr/local/bin:/usr/bin:/bin:/usr/sbin:/sbin", "LC_ALL=C.UTF-8",
                                       "HOME=" + std::string(person->pw_dir), "USER=" + std::string(person->pw_name),
                                       "XDG_RUNTIME_DIR=/run/user/" + std::to_string(user)};
    variables.insert(variables.end(), environment.begin(), environment.end());
    const auto variablePointers = pointers(variables);

    const Pipe input;
    const Pipe output;
    m_pid = ::fork();
    if (m_pid < 0) throw std::system_error(errno, std::generic_category(), "fork");
    if (m_pid == 0) {
        ::setpgid(0, 0);
        ::dup2(input.ends[0], 0);
        ::dup2(output.ends[1], 1);
        ::dup2(output.ends[1], 2);
        if (user != 0 && (::initgroups(person->pw_name, person->pw_gid) != 0 || ::setgid(person->pw_gid) != 0 ||
                          ::setuid(user) != 0))
            ::_exit(126);
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        ::execvpe(arguments[0], arguments.data(), variablePointers.data());
        ::_exit(127);
    }
    ::setpgid(m_pid, m_pid); // whoever of the two is first
    ::close(input.ends[0]);
    ::close(output.ends[1]);
    m_input = input.ends[1];
    m_output = output.ends[0];
    ::fcntl(m_output, F_SETFL, O_NONBLOCK);
}

Program::~Program() {
    if (!m_status) {
        ::kill(-m_pid, SIGKILL);
        ::waitpid(m_pid, nullptr, 0);
    }
    ::close(m_input);
    ::close(m_output);
}

void Program::signal(int number) const { ::kill(m_pid, number); }

void Program::write(const std::string& text) const {
    if (::write(m_input, text.data(), text.size()) != static_cast<ssize_t>(text.size()))
        throw std::system_error(errno, std::generic_category(), "write to a program");
}

std::optional<int> Program::waitForEnd(std::chrono::milliseconds timeout) {
    const auto ended = [this] {
        int status = 0;
        (void)output(); // it may wait for somebody to read
        if (!m_status && ::waitpid(m_pid, &status, WNOHANG) == m_pid)
            m_status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
        return m_status.has_value();
    };
    waitUntil(ended, timeout);
    return m_status;
}

const std::string& Program::output() {
    std::array<char, 4096> buffer{};
    ssize_t count = 0;
    while ((count = ::read(m_output, buffer.data(), buffer.size())) > 0)
        m_said.append(buffer.data(), static_cast<size_t>(count));
    return m_said;
}

bool Program::waitForOutput(const std::string& text, std::chrono::milliseconds timeout) {
    return waitUntil([&] { return output().find(text) != std::string::npos; }, timeout);
}

Ended run(const std::vector<std::string>& command, uid_t user, std::chrono::milliseconds timeout) {
    Program program(command, user);
    const auto status = program.waitForEnd(timeout);
    return {status.value_or(-1), program.output()};
}

} // namespace machine
