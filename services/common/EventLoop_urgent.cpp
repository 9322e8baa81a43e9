#include "services/common/EventLoop_urgent.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <span>
#include <sys/epoll.h>
#include <unistd.h>
#include <utility>

namespace services {

// Its end may come after the loop's.
class EventLoop::UrgentSource final : public Handle {
public:
    UrgentSource(std::shared_ptr<UrgentWatches> watches, int descriptor)
        : m_watches(std::move(watches)), m_descriptor(descriptor) {}
    ~UrgentSource() override { m_watches->remove(m_descriptor); }
    UrgentSource(const UrgentSource&) = delete;
    UrgentSource& operator=(const UrgentSource&) = delete;

private:
    std::shared_ptr<UrgentWatches> m_watches;
    int m_descriptor;
};

EventLoop::UrgentWatches::UrgentWatches(int others) : m_epoll(::epoll_create1(EPOLL_CLOEXEC)) {
    ::epoll_event event{};
    event.events = EPOLLIN;
    event.data.fd = others;
    ::epoll_ctl(m_epoll, EPOLL_CTL_ADD, others, &event);
}

EventLoop::UrgentWatches::~UrgentWatches() {
    if (m_epoll >= 0) ::close(m_epoll);
}

EventLoop::Source EventLoop::UrgentWatches::add(int descriptor, std::uint32_t events, Ready ready, Rank rank) {
    ::epoll_event event{};
    event.events = events;
    event.data.fd = descriptor;
    if (::epoll_ctl(m_epoll, EPOLL_CTL_ADD, descriptor, &event) != 0) return nullptr;
    m_watches[descriptor] = {std::make_shared<Ready>(std::move(ready)), rank};
    return std::make_unique<UrgentSource>(shared_from_this(), descriptor);
}

void EventLoop::UrgentWatches::remove(int descriptor) {
    ::epoll_ctl(m_epoll, EPOLL_CTL_DEL, descriptor, nullptr);
    m_watches.erase(descriptor);
}

bool EventLoop::UrgentWatches::run(std::uint64_t microseconds) {
    constexpr std::uint64_t longest = 1'000'000'000; // of milliseconds
    // What comes of what was done is often there at once. So often, and then the others have their turn.
    constexpr int mostRounds = 4;
    int timeout = microseconds == UINT64_MAX ? -1 : static_cast<int>(std::min((microseconds + 999) / 1000, longest));
    for (int round = 0; round < mostRounds; ++round) {
        std::array<::epoll_event, 32> events;
        const int count = ::epoll_wait(m_epoll, events.data(), static_cast<int>(events.size()), timeout);
        if (count < 0) return errno == EINTR;
        bool wasUrgent = false;
        for (const Rank rank : {Rank::First, Rank::Usual}) {
            for (const auto& event : std::span(events).first(static_cast<std::size_t>(count))) {
                const auto found = m_watches.find(event.data.fd);
                // The others, or one that a callback has ended.
                if (found == m_watches.end() || found->second.rank != rank) continue;
                const auto ready = found->second.ready; // it may end itself
                (*ready)(event.events);
                wasUrgent = true;
            }
        }
        if (!wasUrgent) break;
        timeout = 0;
    }
    return true;
}

} // namespace services
