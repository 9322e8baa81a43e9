#pragma once

#include "system/bus/EventSet.h"
#include "system/files/Descriptor.h"

#include <chrono>
#include <functional>
#include <string>

namespace seat {

// Says when a bus that was away may have come back. A bus with a socket file is heard of through its folder, so that
// nothing runs meanwhile; one without is tried again now and then.
class BusWatcher {
public:
    // `tryAgain` is called when a new attempt is worth it, also more than once.
    BusWatcher(EventSet& events, std::function<void()> tryAgain);
    ~BusWatcher();
    BusWatcher(const BusWatcher&) = delete;
    BusWatcher& operator=(const BusWatcher&) = delete;

    // Begins, or goes on after another failed attempt: a socket file appears shortly before its bus listens, so the
    // first attempts after it appeared may come too early.
    void watch(const std::string& socketFile);
    void stop();
    bool isWatching() const { return m_watching; }

private:
    void watchFolder();
    void folderChanged();
    void tryAfter(std::chrono::milliseconds delay);

    EventSet& m_events;
    std::function<void()> m_tryAgain;
    bool m_watching = false;
    std::string m_socketFile;
    std::string m_waitedForName; // what must appear in the watched folder: the socket, or a folder on the way to it
    Descriptor m_inotify;
    EventSet::Token m_folder = 0;
    EventSet::Token m_timer = 0;
    std::chrono::milliseconds m_delay{0}; // before the next attempt; zero: wait for the folder
};

} // namespace seat
