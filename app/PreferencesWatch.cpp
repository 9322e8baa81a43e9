#include "app/PreferencesWatch.h"

#include "platform/log.h"
#include "system/preferences/PreferencesFile.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <string_view>
#include <sys/inotify.h>
#include <unistd.h>
#include <utility>

namespace app {

namespace {

constexpr double togetherSeconds = 0.05; // changes that follow each other are one
constexpr std::uint32_t ofFiles = IN_MOVED_TO | IN_MOVED_FROM | IN_CLOSE_WRITE | IN_DELETE;
constexpr std::uint32_t ofTheFolder = IN_DELETE_SELF | IN_MOVE_SELF;

// Not a writer's temporary file, nor a lock.
bool isPreferencesFile(std::string_view name) { return name.ends_with(".plist") && !name.starts_with('.'); }

} // namespace

PreferencesWatch::PreferencesWatch(std::string folder, std::function<void()> changed)
    : m_folder(std::move(folder)), m_changed(std::move(changed)) {
    watch();
}

PreferencesWatch::~PreferencesWatch() {
    seat::removeSource(m_source);
    seat::removeSource(m_timer);
}

// From the folder upwards to the first that is there; a folder that has come meanwhile would not be told of, so what is
// below is looked for again once the watch stands.
void PreferencesWatch::watch() {
    seat::removeSource(std::exchange(m_source, 0));
    const std::filesystem::path wanted = m_folder;
    for (int tries = 0; tries < 8; ++tries) {
        m_inotify.reset(::inotify_init1(IN_CLOEXEC | IN_NONBLOCK));
        if (!m_inotify) return giveUp(errno);
        std::filesystem::path below;
        std::filesystem::path there = wanted;
        const auto add = [&] {
            m_isThere = there == wanted;
            const std::uint32_t events = m_isThere ? ofFiles : IN_CREATE | IN_MOVED_TO;
            return ::inotify_add_watch(m_inotify.get(), there.c_str(), events | ofTheFolder | IN_ONLYDIR) >= 0;
        };
        while (!add()) {
            const int error = errno;
            below = there;
            if ((error != ENOENT && error != ENOTDIR) || there == there.root_path()) return giveUp(error);
            there = there.parent_path();
        }
        if (m_isThere || ::access(below.c_str(), F_OK) != 0) break;
    }
    m_source = seat::addReadableSource(m_inotify.get(), [this] { read(); });
}

// What other programs write is shown when the page comes to show it anew.
void PreferencesWatch::giveUp(int error) {
    m_inotify.reset();
    NSLog("watch %s: %s; what other programs change is shown later", m_folder.c_str(), std::strerror(error));
}

void PreferencesWatch::read() {
    alignas(::inotify_event) std::array<char, 4096> bytes;
    bool isElsewhere = !m_isThere;
    for (ssize_t got = 0; (got = ::read(m_inotify.get(), bytes.data(), bytes.size())) > 0;)
        for (std::size_t at = 0; at < static_cast<std::size_t>(got);) {
            ::inotify_event event;
            std::memcpy(&event, bytes.data() + at, sizeof event);
            const char* const name = bytes.data() + at + sizeof event;
            if (event.mask & (ofTheFolder | IN_IGNORED)) isElsewhere = true;
            // What was lost in a full queue may have been one.
            if (event.mask & IN_Q_OVERFLOW)
                m_written.insert(std::string());
            else if (m_isThere && event.len > 0 && isPreferencesFile(name))
                m_written.insert(name);
            at += sizeof event + event.len;
        }
    if (isElsewhere) {
        watch();
        if (m_isThere) m_written.insert(std::string()); // files may be in it
    }
    if (!m_written.empty()) changeLater();
}

void PreferencesWatch::changeLater() {
    if (m_timer != 0) return;
    m_timer = seat::addTimer(togetherSeconds, [this] {
        m_timer = 0;
        const auto written = std::exchange(m_written, {});
        if (std::ranges::any_of(written, [this](const auto& name) { return isReadable(name); })) m_changed();
    });
}

bool PreferencesWatch::isReadable(const std::string& name) const {
    if (name.empty()) return true;
    const seat::Descriptor folder(::open(m_folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!folder) return errno == ENOENT;
    const auto state = seat::PreferencesFile::read(folder.get(), name).state;
    return state == seat::PreferencesFile::State::Good || state == seat::PreferencesFile::State::Missing;
}

} // namespace app
