#include "services/jvnd/StatusFile.h"

#include "services/common/log.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>
#include <utility>

namespace jvnd {

StatusFile::~StatusFile() {
    if (m_file) ::unlink(m_path.c_str());
}

void StatusFile::show(const daemon_status::Status& status) {
    if (m_shown == status) return;
    m_shown = status;
    const int error = write(daemon_status::textOf(status));
    if (error != 0 && !std::exchange(m_hasFailed, true))
        services::log("writing %s: %s", m_path.c_str(), std::strerror(error));
}

// 0, or the system's error number. The new file is locked before anybody can find it under its name.
int StatusFile::write(const std::string& text) {
    const std::string fresh = m_path + ".new";
    ::unlink(fresh.c_str()); // of a daemon that was killed in between
    seat::Descriptor file(::open(fresh.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, 0600));
    if (!file) return errno;
    int error = ::flock(file.get(), LOCK_EX | LOCK_NB) == 0 ? 0 : errno;
    if (error == 0) {
        const auto written = ::write(file.get(), text.data(), text.size());
        if (written != static_cast<ssize_t>(text.size())) error = written < 0 ? errno : ENOSPC;
    }
    if (error == 0 && ::rename(fresh.c_str(), m_path.c_str()) != 0) error = errno;
    if (error != 0)
        ::unlink(fresh.c_str());
    else
        m_file = std::move(file);
    return error;
}

} // namespace jvnd
