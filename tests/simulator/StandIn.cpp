#include "tests/simulator/StandIn.h"

#include "system/process/pidfd.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <poll.h>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>

StandIn::StandIn(const std::string& program, const std::vector<std::string>& arguments, const std::string& root) {
    int input[2];
    int output[2];
    if (::pipe2(input, O_CLOEXEC) != 0 || ::pipe2(output, O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
    std::vector<char*> words{const_cast<char*>(program.c_str())};
    for (const auto& argument : arguments) words.push_back(const_cast<char*>(argument.c_str()));
    words.push_back(nullptr);
    m_process = ::fork();
    if (m_process == 0) {
        ::dup2(input[0], 0);
        ::dup2(output[1], 1);
        ::dup2(output[1], 2);
        if (root.empty())
            ::unsetenv("JOYVANE_ROOT");
        else
            ::setenv("JOYVANE_ROOT", root.c_str(), 1);
        ::execv(program.c_str(), words.data());
        ::_exit(127);
    }
    m_input.reset(input[1]);
    m_output.reset(output[0]);
    ::close(input[0]);
    ::close(output[1]);
}

StandIn::~StandIn() {
    if (m_process == 0) return;
    ::kill(m_process, SIGKILL);
    ::waitpid(m_process, nullptr, 0);
}

void StandIn::say(const std::string& line) const {
    const std::string text = line + "\n";
    [[maybe_unused]] const auto written = ::write(m_input.get(), text.data(), text.size());
}

void StandIn::signal(int number) const { ::kill(m_process, number); }

bool StandIn::readSome(int milliseconds) {
    ::pollfd readable{m_output.get(), POLLIN, 0};
    if (::poll(&readable, 1, milliseconds) <= 0) return false;
    char bytes[4096];
    const auto got = ::read(m_output.get(), bytes, sizeof bytes);
    if (got <= 0) return false;
    m_partial.append(bytes, static_cast<std::size_t>(got));
    for (auto end = m_partial.find('\n'); end != std::string::npos; end = m_partial.find('\n')) {
        m_lines.push_back(m_partial.substr(0, end));
        m_partial.erase(0, end + 1);
    }
    return true;
}

bool StandIn::hears(const std::string& text, std::size_t times) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    for (std::size_t seen = 0;;) {
        for (; seen < m_lines.size(); ++seen)
            if (m_lines[seen].find(text) != std::string::npos && --times == 0) return true;
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(end - std::chrono::steady_clock::now()).count();
        if (left <= 0 || !readSome(static_cast<int>(left))) return false;
    }
}

bool StandIn::hasSaid(const std::string& text) {
    while (readSome(0)) {
    }
    return std::any_of(m_lines.begin(), m_lines.end(),
                       [&text](const std::string& line) { return line.find(text) != std::string::npos; });
}

std::optional<int> StandIn::end() {
    const seat::Descriptor process(::pidfd_open(m_process, 0));
    ::pollfd ended{process.get(), POLLIN, 0};
    if (::poll(&ended, 1, 10'000) != 1) return std::nullopt;
    int status = 0;
    ::waitpid(m_process, &status, 0);
    m_process = 0;
    while (readSome(0)) {
    }
    return WIFSIGNALED(status) ? -WTERMSIG(status) : WEXITSTATUS(status);
}
