#include "app/DaemonWatch.h"

#include <array>
#include <cstring>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/inotify.h>
#include <unistd.h>
#include <utility>

namespace app {

namespace {

// A daemon that ends lets its lock go a moment after it is known to have closed the file.
constexpr double settleSeconds = 0.05;
constexpr std::uint32_t events = IN_MOVED_TO | IN_DELETE | IN_CLOSE_WRITE | IN_DELETE_SELF | IN_MOVE_SELF;

std::optional<daemon_status::Status> statusIn(const std::string& path) {
    const seat::Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
    if (!file || ::flock(file.get(), LOCK_SH | LOCK_NB) == 0) return std::nullopt; // nobody holds it: left behind
    std::array<char, 256> text;
    const auto size = ::read(file.get(), text.data(), text.size());
    if (size <= 0) return std::nullopt;
    return daemon_status::statusOf({text.data(), static_cast<std::size_t>(size)});
}

} // namespace

DaemonWatch::DaemonWatch(std::string path, std::function<void()> changed)
    : m_path(std::move(path)), m_changed(std::move(changed)) {
    watchFolder();
    m_status = statusIn(m_path);
}

DaemonWatch::~DaemonWatch() {
    seat::removeSource(m_source);
    seat::removeSource(m_timer);
}

void DaemonWatch::watchFolder() {
    seat::removeSource(std::exchange(m_source, 0));
    m_folder.reset(::inotify_init1(IN_CLOEXEC | IN_NONBLOCK));
    const std::string folder = m_path.substr(0, m_path.rfind('/') + 1);
    if (!m_folder || ::inotify_add_watch(m_folder.get(), folder.c_str(), events | IN_ONLYDIR) < 0)
        return m_folder.reset();
    m_source = seat::addReadableSource(m_folder.get(), [this] { folderChanged(); });
}

void DaemonWatch::folderChanged() {
    alignas(::inotify_event) std::array<char, 4096> bytes;
    bool isWatched = true;
    for (ssize_t got = 0; (got = ::read(m_folder.get(), bytes.data(), bytes.size())) > 0;)
        for (std::size_t at = 0; at < static_cast<std::size_t>(got);) {
            ::inotify_event event;
            std::memcpy(&event, bytes.data() + at, sizeof event);
            if (event.mask & (IN_DELETE_SELF | IN_MOVE_SELF | IN_IGNORED)) isWatched = false;
            at += sizeof event + event.len;
        }
    if (!isWatched) {
        seat::removeSource(std::exchange(m_source, 0));
        m_folder.reset();
    }
    if (m_timer == 0)
        m_timer = seat::addTimer(settleSeconds, [this] {
            m_timer = 0;
            read();
        });
}

void DaemonWatch::look() {
    if (!m_folder) watchFolder();
    read();
}

void DaemonWatch::read() {
    const auto status = statusIn(m_path);
    if (status == m_status) return;
    m_status = status;
    m_changed();
}

} // namespace app
