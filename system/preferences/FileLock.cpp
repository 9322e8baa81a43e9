#include "system/preferences/FileLock.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/file.h>
#include <thread>

namespace seat {

FileLock::FileLock(int folder, const std::string& name, std::chrono::milliseconds timeout) {
    // Without waiting for a pipe's other end, should somebody have put one here.
    m_descriptor.reset(
        openat(folder, name.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY, 0600));
    if (!m_descriptor) {
        m_reason = std::string("its lock cannot be opened: ") + strerror(errno);
        return;
    }
    const auto deadline = std::chrono::steady_clock::now() + timeout;
    // There is no lock call with a time limit; the wait grows so that a short hold costs little and a long one no work.
    auto pause = std::chrono::microseconds(100);
    while (!(m_held = flock(m_descriptor.get(), LOCK_EX | LOCK_NB) == 0)) {
        if (errno == EINTR) continue;
        if (errno != EWOULDBLOCK) {
            m_reason = std::string("it cannot be locked: ") + strerror(errno);
            m_descriptor.reset();
            return;
        }
        const auto now = std::chrono::steady_clock::now();
        if (now >= deadline) {
            m_reason = "another process holds its lock";
            return;
        }
        std::this_thread::sleep_for(std::min(pause, std::chrono::ceil<std::chrono::microseconds>(deadline - now)));
        pause = std::min(pause * 2, std::chrono::microseconds(1000));
    }
}

} // namespace seat
