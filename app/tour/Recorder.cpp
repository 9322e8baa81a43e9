#include "app/tour/Recorder.h"

#include "app/tour/describe.h"
#include "kit/dispatch/main_queue.h"
#include "kit/runtime/hidden_addresses.h"
#include "kit/runtime/log.h"
#include "kit/seat.h"
#include "platform/foundation/NSDictionary.h"
#include "platform/foundation/time.h"
#include "system/files/root.h"
#include "system/notify/NotifyListener.h"
#include "system/process/children.h"

#include <algorithm>
#include <filesystem>
#include <sys/inotify.h>
#include <unistd.h>

struct app::Recorder::WatchedFile {
    std::string logicalPath;
    std::shared_ptr<NSDictionary> contents; // as noted last; nil when there were none
    seat::Descriptor watch;
    seat::SourceToken source = 0;
    ~WatchedFile() { seat::removeSource(source); }
};

app::Recorder::Recorder(const std::string& path)
    : m_file(std::fopen(path.c_str(), "we")), m_start(platform::CACurrentMediaTime()) {}

app::Recorder::~Recorder() {
    if (m_self) {
        seat::setChildListener(nullptr);
        seat::setLogSink({});
    }
    m_listeners.clear();
    m_watched.clear();
    if (m_file) std::fclose(m_file);
}

void app::Recorder::note(const std::string& noted) {
    const std::string& line = m_lines.emplace_back(seat::withoutAddresses(noted));
    if (!m_file) return;
    std::fprintf(m_file, "%8.3f  %s\n", platform::CACurrentMediaTime() - m_start, line.c_str());
    std::fflush(m_file);
}

int app::Recorder::count(const std::string& text) const {
    return static_cast<int>(std::count_if(m_lines.begin(), m_lines.end(), [&](const std::string& line) {
        return !line.starts_with("> ") && line.find(text) != std::string::npos;
    }));
}

void app::Recorder::watchNotification(const std::string& name) {
    m_listeners.push_back(std::make_unique<seat::NotifyListener>(name, [this, name] { note("notification " + name); }));
}

void app::Recorder::watchProcesses() {
    m_self = std::make_shared<Recorder*>(this);
    seat::setChildListener([this](const std::string& sentence) { note(sentence); });
    seat::setLogSink([self = std::weak_ptr(m_self)](std::string_view line) {
        seat::writeLogLine(line);
        seat::queueOnMain([self, text = "log " + std::string(line)] {
            if (const auto alive = self.lock()) (*alive)->note(text);
        });
    });
}

// The folder is watched: the file is replaced, not written.
void app::Recorder::watchPropertyList(const std::string& logicalPath) {
    auto file = std::make_unique<WatchedFile>();
    file->logicalPath = logicalPath;
    const std::filesystem::path path(seat::hostPath(logicalPath));
    std::error_code error;
    std::filesystem::create_directories(path.parent_path(), error);
    file->watch.reset(inotify_init1(IN_CLOEXEC | IN_NONBLOCK));
    if (!file->watch ||
        inotify_add_watch(file->watch.get(), path.parent_path().c_str(), IN_CLOSE_WRITE | IN_MOVED_TO | IN_DELETE) < 0)
        return note("file " + logicalPath + " cannot be watched");
    file->contents = NSDictionary::dictionaryWithContentsOfFile(logicalPath);
    file->source = seat::addReadableSource(file->watch.get(), [this, watched = file.get()] { fileChanged(*watched); });
    m_watched.push_back(std::move(file));
}

void app::Recorder::fileChanged(WatchedFile& file) {
    alignas(inotify_event) char events[4096];
    while (read(file.watch.get(), events, sizeof events) > 0) {
    }
    std::error_code error;
    const auto now = std::filesystem::exists(seat::hostPath(file.logicalPath), error)
                         ? NSDictionary::dictionaryWithContentsOfFile(file.logicalPath)
                         : nullptr;
    for (const auto& change : describeChanges(file.contents.get(), now.get()))
        note("file " + file.logicalPath + ": " + change);
    file.contents = now;
}
