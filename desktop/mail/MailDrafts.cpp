#include "desktop/mail/MailDrafts.h"

#include "platform/log.h"
#include "system/files/make_folders.h"
#include "system/files/root.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <string_view>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace fs = std::filesystem;

namespace seat {
namespace {

constexpr const char* folderOfDrafts = "/tmp/mail";
constexpr std::string_view ending = ".eml";

bool writeAll(const Descriptor& file, std::string_view bytes) {
    while (!bytes.empty()) {
        const auto written = ::write(file.get(), bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return false;
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

std::string failed(const std::string& path, const std::string& reason) {
    NSLog("the message could not be written to %s: %s", path.c_str(), reason.c_str());
    return {};
}

} // namespace

MailDrafts& MailDrafts::shared() {
    static auto* const drafts = new MailDrafts; // the run loop's sources may outlive statics
    return *drafts;
}

std::string MailDrafts::save(const std::string& draft) {
    const std::string folder = hostPath(folderOfDrafts);
    if (const int number = makeFolders(folder)) return failed(folder, std::strerror(number));
    std::string path = folder + "/message-XXXXXX" + std::string(ending);
    Descriptor file(::mkostemps(path.data(), static_cast<int>(ending.size()), O_CLOEXEC));
    if (!file) return failed(path, std::strerror(errno));
    if (!writeAll(file, draft)) {
        const int number = errno;
        ::unlink(path.c_str());
        return failed(path, std::strerror(number));
    }
    m_drafts.emplace_back().path = path;
    file.reset();
    watch(m_drafts.back());
    return path;
}

// Without a watch, of which a system has so many and no more, the draft stays for a later start to remove.
void MailDrafts::watch(Draft& draft) {
    draft.watch.reset(::inotify_init1(IN_CLOEXEC | IN_NONBLOCK));
    if (!draft.watch || ::inotify_add_watch(draft.watch.get(), draft.path.c_str(), IN_CLOSE_NOWRITE) < 0) return;
    draft.read = addReadableSource(draft.watch.get(), [this, &draft] { noteReading(draft); });
}

void MailDrafts::remove(Place draft) {
    removeSource(draft->read);
    removeSource(draft->timer);
    std::error_code error;
    fs::remove(draft->path, error);
    if (error) NSLog("%s could not be removed: %s", draft->path.c_str(), error.message().c_str());
    m_drafts.erase(draft);
}

void MailDrafts::discard(const std::string& path) {
    const auto draft = std::find_if(m_drafts.begin(), m_drafts.end(), [&](const Draft& d) { return d.path == path; });
    if (draft != m_drafts.end()) remove(draft);
}

void MailDrafts::noteReading(Draft& draft) {
    alignas(::inotify_event) char events[4096];
    while (::read(draft.watch.get(), events, sizeof events) > 0) {
    }
    draft.wasRead = true;
    removeSource(draft.timer);
    draft.timer = addTimer(secondsAfterReading, [this, path = draft.path] { discard(path); });
}

void MailDrafts::removeRead() {
    for (auto draft = m_drafts.begin(); draft != m_drafts.end();)
        if (const auto here = draft++; here->wasRead) remove(here);
}

void MailDrafts::removeForgotten() {
    const auto latest = fs::file_time_type::clock::now() - std::chrono::seconds(static_cast<int>(secondsUnread));
    std::error_code error;
    for (fs::directory_iterator at(hostPath(folderOfDrafts), error), end; !error && at != end; at.increment(error)) {
        std::error_code problem;
        const std::string name = at->path().filename();
        if (!name.starts_with("message-") || !name.ends_with(ending)) continue;
        if (at->last_write_time(problem) < latest && !problem) fs::remove(at->path(), problem);
    }
}

} // namespace seat
