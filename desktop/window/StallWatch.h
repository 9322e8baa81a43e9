#pragma once

#include "system/files/Descriptor.h"

#include <atomic>
#include <thread>

namespace seat {

// Watches the main thread while it is in the toolkit's hands, where it may wait for the display without end. A thread
// of its own says so in the log, and ends the process if it has been told to end meanwhile. It sleeps, with no timer
// set, while the main thread does.
class StallWatch {
public:
    // Made and destroyed by the main thread; one at a time.
    StallWatch();
    ~StallWatch();
    StallWatch(const StallWatch&) = delete;
    StallWatch& operator=(const StallWatch&) = delete;

    // The main thread goes into the toolkit's hands, and comes back from there. Either may be said again; whether it
    // was news.
    bool begin();
    void end();

    // From a signal's handler: the process is to end, which the main thread will hear of if it comes back.
    static void askToEnd();

    // The main thread is in the toolkit's hands while this lives, if there is a watch. May be within another.
    class Section {
    public:
        Section();
        ~Section();
        Section(const Section&) = delete;
        Section& operator=(const Section&) = delete;

    private:
        StallWatch* m_begun = nullptr;
    };

private:
    void watch();
    void look();

    Descriptor m_timer; // runs between begin() and end()
    Descriptor m_stop;
    std::atomic<bool> m_isInside = false;
    std::atomic<bool> m_isSaid = false; // of this stall
    int m_looks = 0;                    // at one stall, and how many of them since the process was to end
    int m_looksSinceEnd = 0;
    std::thread m_thread;
};

} // namespace seat
