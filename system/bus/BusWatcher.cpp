#include "system/bus/BusWatcher.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <sys/epoll.h>
#include <sys/inotify.h>
#include <unistd.h>
#include <utility>

namespace {

using std::chrono::milliseconds;

constexpr milliseconds firstDelay{20};
constexpr milliseconds longestDelay{1000}; // a bus that is back is found within 2 s

constexpr std::uint32_t interestingEvents =
    IN_CREATE | IN_MOVED_TO | IN_ATTRIB | IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR;

} // namespace

seat::BusWatcher::BusWatcher(EventSet& events, std::function<void()> tryAgain)
    : m_events(events), m_tryAgain(std::move(tryAgain)) {}

seat::BusWatcher::~BusWatcher() { stop(); }

void seat::BusWatcher::watch(const std::string& socketFile) {
    if (!m_watching || socketFile != m_socketFile) {
        stop();
        m_watching = true;
        m_socketFile = socketFile;
        m_delay = firstDelay; // the bus may have come between the failed attempt and the watch
        if (!m_socketFile.empty()) watchFolder();
    }
    if (m_timer != 0 || m_delay.count() == 0) return;
    const auto delay = m_delay;
    m_delay *= 2;
    // Where the folder tells, a few attempts are enough: the bus is not coming up after all.
    if (m_delay > longestDelay) m_delay = m_folder != 0 ? milliseconds(0) : longestDelay;
    tryAfter(delay);
}

void seat::BusWatcher::stop() {
    m_events.remove(std::exchange(m_folder, 0));
    m_events.remove(std::exchange(m_timer, 0));
    m_inotify.reset();
    m_watching = false;
    m_delay = milliseconds(0);
}

void seat::BusWatcher::watchFolder() {
    m_events.remove(std::exchange(m_folder, 0));
    m_inotify.reset(::inotify_init1(IN_CLOEXEC | IN_NONBLOCK));
    if (!m_inotify) return;
    std::filesystem::path folder = std::filesystem::path(m_socketFile).parent_path();
    m_waitedForName = std::filesystem::path(m_socketFile).filename();
    // The folder itself may be missing, as the run folder is between two sessions: then its parent tells.
    while (::inotify_add_watch(m_inotify.get(), folder.c_str(), interestingEvents) < 0) {
        if (!folder.has_relative_path()) return m_inotify.reset();
        m_waitedForName = folder.filename();
        folder = folder.parent_path();
    }
    m_folder = m_events.watch(m_inotify.get(), EPOLLIN, [this](std::uint32_t) { folderChanged(); });
}

void seat::BusWatcher::folderChanged() {
    alignas(::inotify_event) char buffer[4096];
    bool appeared = false;
    bool folderGone = false;
    for (::ssize_t size; (size = ::read(m_inotify.get(), buffer, sizeof buffer)) > 0;) {
        for (std::size_t at = 0; at < static_cast<std::size_t>(size);) {
            const auto* const event = reinterpret_cast<const ::inotify_event*>(buffer + at);
            appeared = appeared || (event->len > 0 && m_waitedForName == event->name);
            folderGone = folderGone || (event->mask & (IN_DELETE_SELF | IN_MOVE_SELF | IN_IGNORED | IN_UNMOUNT));
            at += sizeof *event + event->len;
        }
    }
    if (!appeared && !folderGone) return;
    watchFolder();
    m_delay = firstDelay;
    tryAfter(firstDelay);
}

void seat::BusWatcher::tryAfter(milliseconds delay) {
    m_events.remove(m_timer);
    m_timer = m_events.addTimer(delay, EventSet::Timer::Once, [this] {
        m_timer = 0;
        m_tryAgain();
    });
}
