#include "services/jvnd/SettingsFile.h"

#include "services/common/log.h"
#include "services/jvnd/make_folders.h"
#include "system/preferences/PreferencesFile.h"

#include <fcntl.h>
#include <filesystem>

namespace jvnd {

SettingsFile::SettingsFile(services::EventLoop& loop, std::string path, std::function<void()> changed)
    : m_loop(loop), m_path(std::move(path)), m_changed(std::move(changed)) {
    makeFolders(std::filesystem::path(m_path).parent_path());
    read();
}

void SettingsFile::reread() {
    const auto before = m_settings;
    read();
    if (!(m_settings == before)) m_changed();
}

void SettingsFile::checkWatch() {
    if (!m_watch->isWatching()) reread();
}

void SettingsFile::read() {
    // A folder that was taken away is not heard of any more, and may be back. Watched first, so that nothing is missed.
    if (!m_watch || !m_watch->isWatching()) m_watch.emplace(m_loop, m_path, [this] { reread(); });
    const std::filesystem::path path(m_path);
    const seat::Descriptor folder(::open(path.parent_path().c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    using File = seat::PreferencesFile;
    const auto file = folder ? File::read(folder.get(), path.filename()) : File{};
    if (file.state != File::State::Missing && file.state != File::State::Good)
        return services::log("settings: %s: %s; what was read before holds", m_path.c_str(), file.reason.c_str());
    std::string complaint;
    m_settings = readSettings(file.values.get(), complaint);
    if (!complaint.empty()) services::log("settings: %s: %s", m_path.c_str(), complaint.c_str());
}

} // namespace jvnd
