#pragma once

#include "kit/dispatch/run_loop_sources.h"
#include "system/files/Descriptor.h"

#include <functional>
#include <set>
#include <string>

namespace app {

// Hears that a preferences file was written, by whomever. One that cannot be read says nothing: what it held may still
// be shown. While the folder is not there, the nearest one above it that is tells when it comes. Main thread; nothing
// waits, and nothing is asked again without a reason. When the system refuses to watch it says so in the log, and
// nothing is heard.
class PreferencesWatch {
public:
    // A real path. `changed` hears once of several changes that follow each other; it may not destroy the object.
    PreferencesWatch(std::string folder, std::function<void()> changed);
    ~PreferencesWatch();
    PreferencesWatch(const PreferencesWatch&) = delete;
    PreferencesWatch& operator=(const PreferencesWatch&) = delete;

private:
    void watch();
    void giveUp(int error);
    void read();
    void changeLater();
    bool isReadable(const std::string& name) const;

    std::string m_folder;
    std::function<void()> m_changed;
    seat::Descriptor m_inotify;
    bool m_isThere = false; // what is watched is the folder itself
    seat::SourceToken m_source = 0;
    seat::SourceToken m_timer = 0;
    std::set<std::string> m_written; // since changed() was called; the empty name stands for any
};

} // namespace app
