#include "simulator/program.h"

#include "system/process/pidfd.h"

#include <csignal>
#include <sys/signalfd.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace simulator {

Program::Program() {
    ::signal(SIGPIPE, SIG_IGN);
    ::sigset_t set;
    ::sigemptyset(&set);
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) ::sigaddset(&set, number);
    ::sigprocmask(SIG_BLOCK, &set, nullptr);
    m_signals.reset(::signalfd(-1, &set, SFD_CLOEXEC | SFD_NONBLOCK));
    m_signalSource = seat::addReadableSource(m_signals.get(), [this] { signalArrived(); });
    m_signalled = [this](int) { end(0); };
}

Program::~Program() {
    for (const auto source : {m_signalSource, m_parentSource, m_inputSource}) seat::removeSource(source);
}

void Program::endWithParent() {
    const ::pid_t parent = ::getppid();
    m_parent.reset(::pidfd_open(parent, 0));
    if (!m_parent || ::getppid() != parent) return end(0);
    m_parentSource = seat::addReadableSource(m_parent.get(), [this] {
        seat::removeSource(std::exchange(m_parentSource, 0));
        end(0);
    });
}

void Program::readLines(std::function<void(const std::string&)> line) {
    struct ::stat input;
    if (::fstat(STDIN_FILENO, &input) != 0 || (!S_ISFIFO(input.st_mode) && ::isatty(STDIN_FILENO) == 0)) return;
    m_line = std::move(line);
    m_inputSource = seat::addReadableSource(STDIN_FILENO, [this] { inputArrived(); });
}

int Program::run() {
    while (!m_ended) m_loop.runUntil([this] { return m_ended; }, 3600);
    return m_code;
}

void Program::end(int code) {
    m_ended = true;
    m_code = code;
}

void Program::signalArrived() {
    ::signalfd_siginfo information;
    while (::read(m_signals.get(), &information, sizeof information) == sizeof information)
        m_signalled(static_cast<int>(information.ssi_signo));
}

void Program::inputArrived() {
    char bytes[4096];
    const ::ssize_t got = ::read(STDIN_FILENO, bytes, sizeof bytes);
    if (got <= 0) {
        seat::removeSource(std::exchange(m_inputSource, 0));
        if (!::isatty(STDIN_FILENO)) end(0); // whoever held the other end has gone
        return;
    }
    m_partialLine.append(bytes, static_cast<std::size_t>(got));
    for (auto end = m_partialLine.find('\n'); end != std::string::npos; end = m_partialLine.find('\n')) {
        const std::string line = m_partialLine.substr(0, end);
        m_partialLine.erase(0, end + 1);
        m_line(line);
    }
}

} // namespace simulator
