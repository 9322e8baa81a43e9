#pragma once

// The tour's log: what was done, and what really went out meanwhile, with the seconds since the tour began.

#include "kit/dispatch/run_loop_sources.h"
#include "system/files/Descriptor.h"

#include <cstdio>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace seat {
class NotifyListener;
}

namespace app {

class Recorder {
public:
    // Writes to the file, emptied first; false from isOpen() when it cannot be opened.
    explicit Recorder(const std::string& path);
    ~Recorder();
    Recorder(const Recorder&) = delete;
    Recorder& operator=(const Recorder&) = delete;

    bool isOpen() const { return m_file != nullptr; }
    void note(const std::string& line);

    // From now on each post of the notification is noted, whoever posts it.
    void watchNotification(const std::string& name);
    // From now on each replacement of the property list is noted, with the keys that have changed. A logical path.
    void watchPropertyList(const std::string& logicalPath);

    // From now on each process that is started and each that has ended is noted, and each line that the program logs.
    void watchProcesses();

    // How often lines that contain `text` were noted; what the tour itself does, which begins with "> ", does not
    // count.
    int count(const std::string& text) const;

private:
    struct WatchedFile;
    void fileChanged(WatchedFile& file);

    std::FILE* m_file;
    double m_start;
    std::vector<std::string> m_lines;
    std::vector<std::unique_ptr<seat::NotifyListener>> m_listeners;
    std::vector<std::unique_ptr<WatchedFile>> m_watched;
    std::shared_ptr<Recorder*> m_self; // for notes that come from other threads by way of the main queue
};

} // namespace app
