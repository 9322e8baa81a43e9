#include "services/jvnd/FolderWatch.h"

#include <array>
#include <cstring>
#include <sys/epoll.h>
#include <sys/inotify.h>

namespace jvnd {

namespace {

constexpr std::uint32_t fileEvents = IN_MOVED_TO | IN_MOVED_FROM | IN_CREATE | IN_CLOSE_WRITE | IN_DELETE;
constexpr std::uint32_t folderEvents = IN_DELETE_SELF | IN_MOVE_SELF;

} // namespace

FolderWatch::FolderWatch(services::EventLoop& loop, const std::string& path, std::function<void()> changed)
    : m_changed(std::move(changed)), m_inotify(::inotify_init1(IN_CLOEXEC | IN_NONBLOCK)) {
    const auto slash = path.rfind('/');
    m_name = path.substr(slash + 1);
    const auto folder = path.substr(0, slash + 1);
    if (!m_inotify || ::inotify_add_watch(m_inotify.get(), folder.c_str(), fileEvents | folderEvents | IN_ONLYDIR) < 0)
        return;
    // Before the callers: what is stored before a command is sent counts for it.
    m_source = loop.watchUrgently(
        m_inotify.get(), EPOLLIN, [this](std::uint32_t) { read(); }, services::EventLoop::Rank::First);
}

void FolderWatch::read() {
    alignas(::inotify_event) std::array<char, 4096> bytes;
    bool isConcerned = false;
    for (::ssize_t got = 0; (got = ::read(m_inotify.get(), bytes.data(), bytes.size())) > 0;) {
        for (std::size_t at = 0; at < static_cast<std::size_t>(got);) {
            ::inotify_event event;
            std::memcpy(&event, bytes.data() + at, sizeof event);
            const char* const name = bytes.data() + at + sizeof event;
            // What was lost in a full queue may have been ours.
            if ((event.mask & (IN_Q_OVERFLOW | folderEvents)) || (event.len > 0 && m_name == name)) isConcerned = true;
            if (event.mask & (folderEvents | IN_IGNORED)) m_source.reset();
            at += sizeof event + event.len;
        }
    }
    if (!isConcerned) return;
    const auto changed = m_changed; // it may destroy this object
    changed();
}

} // namespace jvnd
