#include "system/bus/EventSet.h"

#include <array>
#include <sys/epoll.h>
#include <sys/timerfd.h>
#include <unistd.h>

seat::EventSet::EventSet() : m_epoll(::epoll_create1(EPOLL_CLOEXEC)) {
    m_source = addReadableSource(m_epoll.get(), [this] { deliver(); });
}

seat::EventSet::~EventSet() { removeSource(m_source); }

seat::EventSet::Token seat::EventSet::add(std::shared_ptr<Entry> entry, std::uint32_t events) {
    const Token token = ++m_last;
    ::epoll_event event{};
    event.events = events;
    event.data.u64 = token;
    ::epoll_ctl(m_epoll.get(), EPOLL_CTL_ADD, entry->watched, &event);
    m_entries.emplace(token, std::move(entry));
    return token;
}

seat::EventSet::Token seat::EventSet::watch(int descriptor, std::uint32_t events,
                                            std::function<void(std::uint32_t)> callback) {
    return add(std::make_shared<Entry>(descriptor, Descriptor(), std::move(callback)), events);
}

seat::EventSet::Token seat::EventSet::addTimer(std::chrono::milliseconds delay, Timer timer,
                                               std::function<void()> callback) {
    Descriptor descriptor(::timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC | TFD_NONBLOCK));
    if (delay.count() <= 0) delay = std::chrono::milliseconds(1); // zero would disarm it
    ::itimerspec time{};
    time.it_value = {delay.count() / 1000, (delay.count() % 1000) * 1'000'000};
    if (timer == Timer::Repeating) time.it_interval = time.it_value;
    ::timerfd_settime(descriptor.get(), 0, &time, nullptr);

    const int watched = descriptor.get();
    const auto entry = std::make_shared<Entry>(watched, std::move(descriptor), nullptr);
    const Token token = add(entry, EPOLLIN);
    entry->callback = [this, watched, token, timer, run = std::move(callback)](std::uint32_t) {
        std::uint64_t expirations = 0;
        if (::read(watched, &expirations, sizeof expirations) <= 0) return;
        if (timer == Timer::Once) remove(token);
        run();
    };
    return token;
}

void seat::EventSet::remove(Token token) {
    const auto found = m_entries.find(token);
    if (found == m_entries.end()) return;
    ::epoll_ctl(m_epoll.get(), EPOLL_CTL_DEL, found->second->watched, nullptr);
    const auto entry = std::move(found->second); // what the callback holds dies after the map has changed
    m_entries.erase(found);
}

void seat::EventSet::deliver() {
    std::array<::epoll_event, 16> events;
    const int count = ::epoll_wait(m_epoll.get(), events.data(), events.size(), 0);
    for (int i = 0; i < count; ++i) {
        const Token token = events[i].data.u64; // a copy: the system packs its record
        const auto found = m_entries.find(token);
        if (found == m_entries.end()) continue; // removed by an earlier callback
        const auto entry = found->second;
        entry->callback(events[i].events);
    }
}
