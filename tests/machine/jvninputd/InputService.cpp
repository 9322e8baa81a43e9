#include "tests/machine/jvninputd/InputService.h"

#include "tests/machine/support/wait_until.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace machine {
namespace {

std::string contents(const std::string& path) {
    std::ifstream file(path);
    std::stringstream text;
    text << file.rdbuf();
    return text.str();
}

bool answers(const std::string& path) {
    const int connection = ::socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0);
    ::sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    const bool connected = ::connect(connection, reinterpret_cast<::sockaddr*>(&address), sizeof address) == 0;
    ::close(connection);
    return connected;
}

// The number behind each occurrence of the word, added up.
long sumOf(const std::string& text, const std::string& word) {
    long sum = 0;
    for (std::size_t at = 0; (at = text.find(word, at)) != std::string::npos;) {
        at += word.size();
        sum += std::strtol(text.c_str() + at, nullptr, 10);
    }
    return sum;
}

} // namespace

InputService::InputService(std::string module) : m_module(std::move(module)) {
    char folder[] = "/tmp/jvninputd-XXXXXX";
    if (!::mkdtemp(folder)) throw std::system_error(errno, std::generic_category(), "a folder for the service");
    std::filesystem::permissions(folder, static_cast<std::filesystem::perms>(0711));
    m_folder = folder;
    m_socket = m_folder + "/socket";
    start();
}

InputService::~InputService() {
    if (m_process > 0) kill();
    std::error_code ignored;
    std::filesystem::remove_all(m_folder, ignored);
}

void InputService::start() {
    std::filesystem::remove(m_socket);
    m_process = ::fork();
    if (m_process < 0) throw std::system_error(errno, std::generic_category(), "fork");
    if (m_process == 0) {
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        const int log = ::open((m_folder + "/log").c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600);
        ::dup2(log, 2);
        if (!m_module.empty()) ::setenv("LD_PRELOAD", m_module.c_str(), 1);
        ::execl(JVNINPUTD_PROGRAM, "jvninputd", "--socket", m_socket.c_str(), static_cast<char*>(nullptr));
        ::_exit(127);
    }
    if (!waitUntil([this] { return answers(m_socket); }))
        throw std::system_error(ETIMEDOUT, std::generic_category(), "the service's socket");
}

void InputService::signal(int number) const { ::kill(m_process, number); }

void InputService::kill() {
    ::kill(m_process, SIGKILL);
    ::waitpid(m_process, nullptr, 0);
    m_process = -1;
}

void InputService::waitForEnd() {
    int status = 0;
    const auto ended = [&] { return ::waitpid(m_process, &status, WNOHANG) == m_process; };
    if (!waitUntil(ended)) throw std::system_error(ETIMEDOUT, std::generic_category(), "the service's end");
    m_process = -1;
    if (!WIFSIGNALED(status) || WTERMSIG(status) != SIGKILL)
        throw std::runtime_error("the service has ended by itself, with " + std::to_string(status));
}

std::string InputService::log() const { return contents(m_folder + "/log"); }

long InputService::wakeUps() const {
    return sumOf(contents("/proc/" + std::to_string(m_process) + "/status"), "\nvoluntary_ctxt_switches:");
}

long InputService::privateMemory() const {
    return sumOf(contents("/proc/" + std::to_string(m_process) + "/smaps_rollup"), "Private_Clean:") +
           sumOf(contents("/proc/" + std::to_string(m_process) + "/smaps_rollup"), "Private_Dirty:");
}

long InputService::descriptors() const {
    long count = 0;
    for ([[maybe_unused]] const auto& entry :
         std::filesystem::directory_iterator("/proc/" + std::to_string(m_process) + "/fd"))
        ++count;
    return count;
}

} // namespace machine
