#pragma once

#include "services/daemon_status/Status.h"
#include "system/files/Descriptor.h"

#include "kit/dispatch/run_loop_sources.h"

#include <functional>
#include <optional>
#include <string>

namespace app {

// Hears what the root's daemon says of how things are, from the file in which it does. Main thread; nothing waits, and
// nothing is asked again without a reason.
class DaemonWatch {
public:
    // The file's real path. `changed` hears when the status is another one; it may not destroy the object.
    DaemonWatch(std::string path, std::function<void()> changed);
    ~DaemonWatch();
    DaemonWatch(const DaemonWatch&) = delete;
    DaemonWatch& operator=(const DaemonWatch&) = delete;

    // Nothing while no daemon runs, or it says nothing.
    const std::optional<daemon_status::Status>& status() const { return m_status; }
    // For when something has happened that makes it likely that the daemon is there now: its folder may be new.
    void look();

private:
    void watchFolder();
    void folderChanged();
    void read();

    std::string m_path;
    std::function<void()> m_changed;
    seat::Descriptor m_folder; // tells of changes in it; none while it is not there
    seat::SourceToken m_source = 0;
    seat::SourceToken m_timer = 0;
    std::optional<daemon_status::Status> m_status;
};

} // namespace app
