#include "services/jvnd/ControlPlace.h"

#include "services/common/log.h"
#include "services/jvnd/exit_codes.h"
#include "services/jvnd/make_folders.h"
#include "system/socket/address.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <poll.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <systemd/sd-daemon.h>
#include <unistd.h>

namespace jvnd {

namespace {

namespace fs = std::filesystem;

constexpr int backlog = 64;
constexpr const char* ownName = "own-socket";
constexpr const char* lockName = "own-lock";

std::string reason(const std::string& path, int error) { return path + ": " + std::strerror(error); }

bool isSameFile(const struct ::stat& a, const struct ::stat& b) { return a.st_ino == b.st_ino && a.st_dev == b.st_dev; }

// What the socket was bound to, as it was called then.
std::string boundPath(int descriptor) {
    ::sockaddr_un address{};
    ::socklen_t size = sizeof address - 1; // so that it ends with a zero
    if (::getsockname(descriptor, reinterpret_cast<::sockaddr*>(&address), &size) != 0) return {};
    return address.sun_family == AF_UNIX ? std::string(address.sun_path) : std::string();
}

bool isSamePlace(const std::string& a, const std::string& b) {
    struct ::stat folderOfA;
    struct ::stat folderOfB;
    return fs::path(a).filename() == fs::path(b).filename() &&
           ::stat(fs::path(a).parent_path().c_str(), &folderOfA) == 0 &&
           ::stat(fs::path(b).parent_path().c_str(), &folderOfB) == 0 && isSameFile(folderOfA, folderOfB);
}

} // namespace

ControlPlace::~ControlPlace() {
    if (m_ownPath.empty()) return;
    ::unlink(m_ownPath.c_str());
    // While it is still locked, so that whoever opens the same file sees that it has gone.
    ::unlink((m_ownPath + ".lock").c_str());
}

std::string ControlPlace::open(const std::string& realPath) {
    // The number says that the manager's words are meant for us, and not for a program that has started us.
    const char* const process = std::getenv("SYSTEMD_EXEC_PID");
    m_isManaged = process && std::to_string(::getpid()) == process && std::getenv("NOTIFY_SOCKET");
    makeFolders(fs::path(realPath).parent_path());
    takePassed();
    for (std::size_t i = 0; i < m_listeners.size(); ++i) {
        if (m_names[i] == ownName && m_lock) m_ownPath = realPath;
        if (m_names[i] == ownName || isSamePlace(boundPath(m_listeners[i].get()), realPath)) return {};
    }
    if (auto problem = claim(realPath); !problem.empty()) return problem;
    return bind(realPath);
}

void ControlPlace::takePassed() {
    char** names = nullptr;
    const int count = ::sd_listen_fds_with_names(/*unset_environment=*/1, &names);
    for (int i = 0; i < count; ++i) {
        const int descriptor = SD_LISTEN_FDS_START + i;
        if (std::strcmp(names[i], lockName) == 0) {
            m_lock.reset(descriptor);
        } else if (::sd_is_socket_unix(descriptor, SOCK_STREAM, /*listening=*/1, nullptr, 0) > 0) {
            ::fcntl(descriptor, F_SETFL, ::fcntl(descriptor, F_GETFL) | O_NONBLOCK);
            m_listeners.emplace_back(descriptor);
            m_names.emplace_back(names[i]);
        } else {
            ::close(descriptor);
        }
        std::free(names[i]);
    }
    std::free(static_cast<void*>(names));
}

std::string ControlPlace::claim(const std::string& realPath) {
    const std::string lock = realPath + ".lock";
    for (;;) {
        m_lock.reset(::open(lock.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600));
        if (!m_lock) return reason(lock, errno);
        if (::flock(m_lock.get(), LOCK_EX | LOCK_NB) != 0) {
            m_lock.reset();
            return realPath + ": another daemon serves this root";
        }
        struct ::stat held;
        struct ::stat there;
        // Else its last holder has just taken it away.
        if (::fstat(m_lock.get(), &held) == 0 && ::stat(lock.c_str(), &there) == 0 && isSameFile(held, there))
            return {};
    }
}

// Somebody listens there, or has for us: the service manager, whose socket has no lock.
bool ControlPlace::isServed(const std::string& realPath) const {
    const seat::Descriptor probe(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    const int error = probe ? seat::connectToPath(probe.get(), realPath) : errno;
    return error == 0 || error == EAGAIN;
}

std::string ControlPlace::bind(const std::string& realPath) {
    struct ::stat there;
    if (::lstat(realPath.c_str(), &there) == 0) {
        if (!S_ISSOCK(there.st_mode)) return realPath + ": something that is no socket is in its place";
        if (isServed(realPath)) return realPath + ": another daemon serves this root";
        ::unlink(realPath.c_str()); // of a daemon that has crashed
    }
    seat::Descriptor listener(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    const ::mode_t mask = ::umask(0177);
    int error = listener ? seat::bindToPath(listener.get(), realPath) : errno;
    ::umask(mask);
    if (error == 0) m_ownPath = realPath;
    if (error == 0 && ::listen(listener.get(), backlog) != 0) error = errno;
    if (error != 0) return reason(realPath, error);
    m_listeners.push_back(std::move(listener));
    m_names.emplace_back(ownName);
    return {};
}

bool ControlPlace::hasCaller() const {
    for (const auto& listener : m_listeners) {
        ::pollfd entry{listener.get(), POLLIN, 0};
        if (::poll(&entry, 1, 0) == 1) return true;
    }
    return false;
}

int ControlPlace::restart(char* const* arguments) {
    std::vector<std::pair<int, std::string>> passed;
    for (std::size_t i = 0; i < m_listeners.size(); ++i)
        if (!m_isManaged || m_names[i] == ownName) passed.emplace_back(m_listeners[i].get(), m_names[i]);
    if (m_lock) passed.emplace_back(m_lock.get(), lockName);

    if (m_isManaged) { // it keeps what is its own, and for us what is ours
        for (const auto& [descriptor, name] : passed)
            ::sd_pid_notify_with_fds(0, 0, ("FDSTORE=1\nFDNAME=" + name).c_str(), &descriptor, 1);
        m_ownPath.clear();
        return exitRestart;
    }

    // First out of the way, then into the places that the next program looks at; what is not moved is closed by exec.
    constexpr int elsewhere = 64;
    std::string names;
    for (auto& [descriptor, name] : passed) {
        descriptor = ::fcntl(descriptor, F_DUPFD_CLOEXEC, elsewhere);
        names += (names.empty() ? "" : ":") + name;
    }
    for (std::size_t i = 0; i < passed.size(); ++i) ::dup2(passed[i].first, SD_LISTEN_FDS_START + static_cast<int>(i));
    ::setenv("LISTEN_PID", std::to_string(::getpid()).c_str(), 1);
    ::setenv("LISTEN_FDS", std::to_string(passed.size()).c_str(), 1);
    ::setenv("LISTEN_FDNAMES", names.c_str(), 1);
    std::error_code error;
    ::execv(fs::read_symlink("/proc/self/exe", error).c_str(), arguments);
    ::execv("/proc/self/exe", arguments); // the file has been replaced by an update, or taken away
    services::log("starting anew: %s", std::strerror(errno));
    return 1;
}

} // namespace jvnd
