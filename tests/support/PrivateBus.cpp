#include "tests/support/PrivateBus.h"

#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace testing_support {

PrivateBus::PrivateBus(Start start, const char* variable, Admits admits)
    : m_variable(variable), m_address("unix:path=" + m_folder.file("bus")) {
    std::ofstream(m_folder.file("bus.conf")) << R"(<busconfig>
  <type>session</type>
  <listen>)" + m_address + R"(</listen>
  <auth>EXTERNAL</auth>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/><allow eavesdrop="true"/><allow own="*"/>
    )" << (admits == Admits::EveryUser ? R"(<allow user="*"/>)" : "")
                                             << R"(
  </policy>
</busconfig>)";
    if (admits == Admits::EveryUser) std::filesystem::permissions(m_folder.path(), std::filesystem::perms(0711));
    if (const char* const before = std::getenv(m_variable)) {
        m_hadAddress = true;
        m_addressBefore = before;
    }
    ::setenv(m_variable, m_address.c_str(), 1);
    if (start == Start::Now) this->start();
}

PrivateBus::~PrivateBus() {
    kill();
    if (m_hadAddress)
        ::setenv(m_variable, m_addressBefore.c_str(), 1);
    else
        ::unsetenv(m_variable);
}

void PrivateBus::start() {
    const std::string log = m_folder.file("bus.log");
    const std::string configuration = "--config-file=" + m_folder.file("bus.conf");
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
    m_process = ::fork();
    if (m_process == 0) {
        ::prctl(PR_SET_PDEATHSIG, SIGKILL); // not left behind by a test that crashes
        ::dup2(ends[1], 3);
        ::dup2(::open(log.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600), 2);
        ::close_range(4, ~0u, 0);
        ::execl("/usr/bin/dbus-daemon", "dbus-daemon", configuration.c_str(), "--nofork", "--nopidfile", "--nosyslog",
                "--print-address=3", static_cast<char*>(nullptr));
        ::_exit(127);
    }
    ::close(ends[1]);
    // It says its address once it listens.
    char line[512];
    const bool listens = ::read(ends[0], line, sizeof line) > 0;
    ::close(ends[0]);
    if (!listens) {
        kill();
        throw std::runtime_error("dbus-daemon does not start");
    }
}

void PrivateBus::kill() {
    if (m_process <= 0) return;
    ::kill(m_process, SIGKILL);
    ::waitpid(m_process, nullptr, 0);
    m_process = 0;
}

void PrivateBus::stop() const {
    ::kill(m_process, SIGSTOP);
    ::waitpid(m_process, nullptr, WUNTRACED);
}

void PrivateBus::resume() const { ::kill(m_process, SIGCONT); }

} // namespace testing_support
