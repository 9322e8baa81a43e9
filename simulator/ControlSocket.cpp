#include "simulator/ControlSocket.h"

#include "system/socket/address.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

namespace simulator {

namespace {

constexpr int backlog = 64;

std::string reason(const std::string& path, int error) { return path + ": " + std::strerror(error); }

bool isSameFile(int descriptor, const std::string& path) {
    struct ::stat held;
    struct ::stat there;
    return ::fstat(descriptor, &held) == 0 && ::stat(path.c_str(), &there) == 0 && held.st_ino == there.st_ino &&
           held.st_dev == there.st_dev;
}

} // namespace

ControlSocket::~ControlSocket() {
    close();
    // While it is still locked, so that whoever opens the same file sees that it has gone.
    if (m_lock) ::unlink((m_path + ".lock").c_str());
}

std::string ControlSocket::claim(const std::string& realPath) {
    std::error_code error;
    std::filesystem::create_directories(std::filesystem::path(realPath).parent_path(), error);
    const std::string lock = realPath + ".lock";
    for (;;) {
        m_lock.reset(::open(lock.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600));
        if (!m_lock) return reason(lock, errno);
        if (::flock(m_lock.get(), LOCK_EX | LOCK_NB) != 0) {
            m_lock.reset();
            return realPath + ": another daemon serves this root";
        }
        if (isSameFile(m_lock.get(), lock)) break; // else its last holder has just taken it away
    }
    m_path = realPath;
    return {};
}

void ControlSocket::close() {
    m_queue.clear();
    m_listener.reset();
    struct ::stat there;
    if (m_file != 0 && ::lstat(m_path.c_str(), &there) == 0 && there.st_ino == m_file) ::unlink(m_path.c_str());
    m_file = 0;
}

std::string ControlSocket::open(DaemonManner::Door door) {
    close();
    struct ::stat there;
    if (::lstat(m_path.c_str(), &there) == 0) {
        if (!S_ISSOCK(there.st_mode)) return m_path + ": something that is no socket is in its place";
        ::unlink(m_path.c_str()); // of a daemon that has crashed: the lock is ours
    }
    m_listener.reset(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    const ::mode_t mask = ::umask(0077);
    const int error = seat::bindToPath(m_listener.get(), m_path);
    ::umask(mask);
    if (error != 0) return reason(m_path, error);
    if (::lstat(m_path.c_str(), &there) == 0) m_file = there.st_ino;

    if (door == DaemonManner::Door::Refusing) return {}; // a file at which nobody listens
    const bool deaf = door == DaemonManner::Door::Deaf;
    if (::listen(m_listener.get(), deaf ? 0 : backlog) != 0) return reason(m_path, errno);
    for (bool room = deaf; room;) {
        m_queue.emplace_back(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
        room = m_queue.size() < backlog && seat::connectToPath(m_queue.back().get(), m_path) == 0;
    }
    return {};
}

seat::Descriptor ControlSocket::accept() const {
    seat::Descriptor accepted(::accept4(m_listener.get(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
    if (accepted && !seat::peerIsTrusted(accepted.get())) accepted.reset();
    return accepted;
}

} // namespace simulator
