#pragma once

#include "services/common/EventLoop.h"

namespace services {

// The watches of a loop that go before all others, in an epoll instance of their own, where the descriptor of the
// library's whole loop is one more.
class EventLoop::UrgentWatches : public std::enable_shared_from_this<UrgentWatches> {
public:
    using Ready = std::function<void(std::uint32_t)>;

    explicit UrgentWatches(int others);
    ~UrgentWatches();
    UrgentWatches(const UrgentWatches&) = delete;
    UrgentWatches& operator=(const UrgentWatches&) = delete;

    // nullptr, with errno, when the system has no room for it.
    Source add(int descriptor, std::uint32_t events, Ready ready, Rank rank);
    void remove(int descriptor);
    bool isEmpty() const { return m_watches.empty(); }

    // Waits until something is ready here or there, and calls what is ready here. False, with errno, when it fails.
    bool run(std::uint64_t microseconds);

private:
    struct Watch {
        std::shared_ptr<Ready> ready;
        Rank rank;
    };
    int m_epoll;
    std::map<int, Watch> m_watches; // by descriptor
};

} // namespace services
