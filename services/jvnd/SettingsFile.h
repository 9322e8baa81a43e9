#pragma once

#include "services/jvnd/FolderWatch.h"
#include "services/jvnd/Settings.h"

#include <functional>
#include <optional>
#include <string>

namespace jvnd {

// The preferences file as it is, read again whenever it is replaced. A damaged one leaves the settings before it in
// force.
class SettingsFile {
public:
    // A real path; its folders are made when they are missing. The loop outlives this object. `changed` is called when
    // a setting is different than before.
    SettingsFile(services::EventLoop& loop, std::string path, std::function<void()> changed);
    SettingsFile(const SettingsFile&) = delete;
    SettingsFile& operator=(const SettingsFile&) = delete;

    const Settings& settings() const { return m_settings; }
    // Reads it again, whether or not anything was heard of it.
    void reread();
    // The same, if its folder was taken away since, and nothing can have been heard.
    void checkWatch();

private:
    void read();

    services::EventLoop& m_loop;
    std::string m_path;
    std::function<void()> m_changed;
    std::optional<FolderWatch> m_watch;
    Settings m_settings;
};

} // namespace jvnd
