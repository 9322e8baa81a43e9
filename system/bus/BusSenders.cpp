#include "system/bus/BusSenders.h"

#include "platform/log.h"

#include <algorithm>
#include <chrono>
#include <dbus/dbus.h>
#include <unistd.h>
#include <utility>

namespace {

// Names are never given out twice, so a known one stays known; but programs come and go.
constexpr std::size_t mostKnown = 256;
// Of all senders together: what comes before the bus has answered one question.
constexpr std::size_t mostHeld = 50'000;
// What one turn of the run loop gives to them.
constexpr std::chrono::milliseconds longestTurn{4};

} // namespace

namespace seat {

void BusSenders::Unref::operator()(DBusMessage* message) const { ::dbus_message_unref(message); }

BusSenders::BusSenders(EventSet& events, Ask ask, Take hear, Take refuse)
    : m_events(events), m_ask(std::move(ask)), m_hear(std::move(hear)), m_refuse(std::move(refuse)) {}

BusSenders::~BusSenders() { forget(); }

void BusSenders::take(const std::string& name, DBusMessage& message) {
    if (name.empty()) return;
    if (m_senders.size() >= mostKnown && !m_senders.contains(name)) forgetSettled();
    const auto [found, isNew] = m_senders.try_emplace(name);
    auto& sender = found->second;
    if (sender.standing == Standing::Refused) return m_refuse(message);
    if (sender.standing == Standing::Trusted && sender.held.empty()) return m_hear(message);
    if (m_held < mostHeld) {
        sender.held.emplace_back(::dbus_message_ref(&message));
        ++m_held;
    } else if (const auto more = m_overflows.pass()) {
        NSLog("session bus: %s sends faster than it is heard; dropped%s", name.c_str(), more->c_str());
    }
    if (isNew) m_ask(name, [this, name](std::optional<std::uint32_t> user) { answered(name, user); });
}

void BusSenders::answered(const std::string& name, std::optional<std::uint32_t> user) {
    const auto found = m_senders.find(name);
    if (found == m_senders.end()) return; // asked on a connection that is over
    if (user && (*user == ::geteuid() || *user == 0)) {
        found->second.standing = Standing::Trusted;
        return deliver();
    }
    found->second.standing = Standing::Refused;
    const auto refused = std::exchange(found->second.held, {});
    m_held -= refused.size();
    if (const auto more = m_refusals.pass())
        NSLog("session bus: what %s sends is not heard: %s%s", name.c_str(),
              user ? "it is another user's" : "it has gone, and nobody can say whose it was", more->c_str());
    for (const auto& message : refused) m_refuse(*message);
}

void BusSenders::deliver() {
    const auto end = std::chrono::steady_clock::now() + longestTurn;
    const auto next = [this] {
        return std::ranges::find_if(m_senders, [](const auto& each) {
            return each.second.standing == Standing::Trusted && !each.second.held.empty();
        });
    };
    // Whoever hears may forget everybody.
    for (auto at = next(); at != m_senders.end(); at = next()) {
        if (std::chrono::steady_clock::now() >= end) {
            if (m_rest == 0)
                m_rest = m_events.addTimer(std::chrono::milliseconds(0), EventSet::Timer::Once, [this] {
                    m_rest = 0;
                    deliver();
                });
            return;
        }
        const Held message = std::move(at->second.held.front());
        at->second.held.pop_front();
        --m_held;
        m_hear(*message);
    }
}

void BusSenders::forgetSettled() {
    std::erase_if(m_senders,
                  [](const auto& each) { return each.second.standing != Standing::Asked && each.second.held.empty(); });
}

void BusSenders::forget() {
    m_senders.clear();
    m_held = 0;
    m_events.remove(std::exchange(m_rest, 0));
}

} // namespace seat
