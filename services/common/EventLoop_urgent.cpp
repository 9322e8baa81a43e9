#include "services/common/EventLoop_urgent.h"

#include <algorithm>
#include <array>
#include <cerrno>
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

EventLoop::Source EventLoop::UrgentWatches::add(int descriptor, std::uint32_t events, Ready ready) {
    ::epoll_event event{};
    event.events = events;
    event.data.fd = descriptor;
    if (::epoll_ctl(m_epoll, EPOLL_CTL_ADD, descriptor, &event) != 0) return nullptr;
    m_ready[descriptor] = std::make_shared<Ready>(std::move(ready));
    return std::make_unique<UrgentSource>(shared_from_this(), descriptor);
}

void EventLoop::UrgentWatches::remove(int descriptor) {
    ::epoll_ctl(m_epoll, EPOLL_CTL_DEL, descriptor, nullptr);
    m_ready.erase(descriptor);
}

bool EventLoop::UrgentWatches::run(std::uint64_t microseconds) {
    constexpr std::uint64_t longest = 1'000'000'000; // of milliseconds
    const int timeout =
        microseconds == UINT64_MAX ? -1 : static_cast<int>(std::min((microseconds + 999) / 1000, longest));
    std::array<::epoll_event, 8> events;
    const int count = ::epoll_wait(m_epoll, events.data(), static_cast<int>(events.size()), timeout);
    if (count < 0) return errno == EINTR;
    for (int i = 0; i < count; ++i) {
        const auto found = m_ready.find(events[static_cast<std::size_t>(i)].data.fd);
        if (found == m_ready.end()) continue; // the others, or one that a callback has ended
        const auto ready = found->second;     // it may end itself
        (*ready)(events[static_cast<std::size_t>(i)].events);
    }
    return true;
}

} // namespace services
