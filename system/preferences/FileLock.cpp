#include "system/preferences/FileLock.h"

#include "system/files/owner.h"
#include "system/files/uninterrupted.h"

#include <cstring>
#include <fcntl.h>
#include <sys/file.h>
#include <thread>

namespace seat {
namespace {

using Clock = std::chrono::steady_clock;

constexpr mode_t ownerOnly = 0600;

// There is no lock call with a time limit; the wait grows so that a short hold costs little and a long one no work.
bool lockWithin(int descriptor, Clock::time_point deadline) {
    auto pause = std::chrono::microseconds(100);
    while (uninterrupted([&] { return ::flock(descriptor, LOCK_EX | LOCK_NB); }) != 0) {
        const auto now = Clock::now();
        if (errno != EWOULDBLOCK || now >= deadline) return false;
        std::this_thread::sleep_for(std::min(pause, std::chrono::ceil<std::chrono::microseconds>(deadline - now)));
        pause = std::min(pause * 2, std::chrono::microseconds(1000));
    }
    return true;
}

} // namespace

FileLock::FileLock(int folder, const std::string& name, std::optional<std::chrono::milliseconds> timeout)
    : m_folder(folder), m_name(name) {
    Deadline deadline;
    if (timeout) deadline = Clock::now() + *timeout;
    // Whoever removes the file between its opening and its locking leaves a lock that keeps nobody out. Somebody who
    // does nothing else may do so again and again.
    for (int attempt = 0; attempt < 1000; ++attempt) {
        if (!open() || !lockBefore(deadline)) return;
        if (isCurrent()) {
            m_state = State::Held;
            return;
        }
    }
    m_reason = "its lock keeps being removed";
}

void FileLock::fail(const char* operation, int number) {
    m_reason = std::string(operation) + ": " + strerror(number);
    m_descriptor.reset();
}

bool FileLock::open() {
    // Without waiting for a pipe's other end, should somebody have put one here.
    constexpr int flags = O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY;
    const auto opened = [&](int more) {
        return uninterrupted([&] { return ::openat(m_folder, m_name.c_str(), flags | more, ownerOnly); });
    };
    do {
        m_descriptor.reset(opened(O_RDONLY));
        if (m_descriptor) return true;
        if (errno == ENOENT) {
            m_descriptor.reset(opened(O_RDWR | O_CREAT | O_EXCL));
            if (m_descriptor && settleMade(m_descriptor.get(), ownerOnly, m_folder) == 0) return true;
        }
    } while (errno == EEXIST);
    fail("its lock cannot be opened", errno);
    return false;
}

bool FileLock::lockBefore(Deadline deadline) {
    const bool isLocked = deadline ? lockWithin(m_descriptor.get(), *deadline)
                                   : uninterrupted([&] { return ::flock(m_descriptor.get(), LOCK_EX); }) == 0;
    if (isLocked) return true;
    if (errno != EWOULDBLOCK) {
        fail("it cannot be locked", errno);
        return false;
    }
    m_state = State::Busy;
    m_reason = "another process holds its lock";
    return false;
}

bool FileLock::isCurrent() const {
    struct stat locked {};
    struct stat named {};
    return m_descriptor && ::fstat(m_descriptor.get(), &locked) == 0 &&
           ::fstatat(m_folder, m_name.c_str(), &named, AT_SYMLINK_NOFOLLOW) == 0 && locked.st_dev == named.st_dev &&
           locked.st_ino == named.st_ino;
}

} // namespace seat
