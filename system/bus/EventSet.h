#pragma once

#include "kit/dispatch/run_loop_sources.h"
#include "system/files/Descriptor.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>

namespace seat {

// Several descriptors, and timers that follow the system's clock even while the host clock is held, as one source of
// the main run loop. Main thread only. A callback may change or remove anything, the set itself excepted.
class EventSet {
public:
    using Token = std::uint64_t; // 0 is never given out

    EventSet();
    ~EventSet();
    EventSet(const EventSet&) = delete;
    EventSet& operator=(const EventSet&) = delete;

    // `callback` gets the epoll events that came. The descriptor stays the caller's. A descriptor can be watched once.
    Token watch(int descriptor, std::uint32_t events, std::function<void(std::uint32_t)> callback);
    // Runs once after `delay`, or every `delay` until it is removed.
    enum class Timer { Once, Repeating };
    Token addTimer(std::chrono::milliseconds delay, Timer timer, std::function<void()> callback);
    // Watches or timers; 0 and unknown ones are ignored.
    void remove(Token token);

    // What addReadable/removeSource of the run loop sees.
    int descriptor() const { return m_epoll.get(); }

private:
    struct Entry {
        int watched;
        Descriptor own; // a timer's
        std::function<void(std::uint32_t)> callback;
    };

    Token add(std::shared_ptr<Entry> entry, std::uint32_t events);
    void deliver();

    Descriptor m_epoll;
    SourceToken m_source = 0;
    Token m_last = 0;
    std::map<Token, std::shared_ptr<Entry>> m_entries;
};

} // namespace seat
