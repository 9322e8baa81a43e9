#include "system/preferences/PendingPreferences.h"

#include <algorithm>

namespace seat {

bool PendingPreferences::add(const std::string& domain, const Change& change) {
    const std::lock_guard lock(m_mutex);
    auto& [changes, isWaitedFor] = m_domains[domain];
    changes.push_back(change);
    return isWaitedFor;
}

PreferenceWrite PendingPreferences::leave(const Change& change) {
    const std::lock_guard lock(m_mutex);
    if (change->outcome == PreferenceWrite::Pending) change->isWaiting = true;
    return change->outcome;
}

PendingPreferences::Changes PendingPreferences::all(const std::string& domain) const {
    const std::lock_guard lock(m_mutex);
    const auto found = m_domains.find(domain);
    return found == m_domains.end() ? Changes() : found->second.changes;
}

void PendingPreferences::end(const std::string& domain, Changes& changes, PreferenceWrite outcome) {
    {
        const std::lock_guard lock(m_mutex);
        std::erase_if(changes, [](const Change& change) { return change->outcome != PreferenceWrite::Pending; });
        for (const auto& change : changes) change->outcome = outcome;
        if (const auto found = m_domains.find(domain); found != m_domains.end())
            std::erase_if(found->second.changes,
                          [](const Change& change) { return change->outcome != PreferenceWrite::Pending; });
    }
    m_ended.notify_all();
    // Nobody changes them any more.
    for (const auto& change : changes)
        if (change->isWaiting && change->ended) change->ended(outcome);
}

void PendingPreferences::endAll(const std::string& domain, PreferenceWrite outcome, const Change& besides) {
    Changes all;
    {
        const std::lock_guard lock(m_mutex);
        if (besides && besides->outcome == PreferenceWrite::Pending) besides->outcome = outcome;
        if (const auto found = m_domains.find(domain); found != m_domains.end()) all.swap(found->second.changes);
    }
    end(domain, all, outcome);
}

bool PendingPreferences::beginWaiting(const std::string& domain) {
    const std::lock_guard lock(m_mutex);
    return !std::exchange(m_domains[domain].isWaitedFor, true);
}

bool PendingPreferences::endWaiting(const std::string& domain) {
    {
        const std::lock_guard lock(m_mutex);
        auto& [changes, isWaitedFor] = m_domains[domain];
        isWaitedFor = !changes.empty();
        if (isWaitedFor) return false;
    }
    m_ended.notify_all();
    return true;
}

void PendingPreferences::giveUpWaiting(const std::string& domain) {
    const std::lock_guard lock(m_mutex);
    if (const auto found = m_domains.find(domain); found != m_domains.end()) found->second.isWaitedFor = false;
}

std::vector<std::pair<std::string, std::size_t>> PendingPreferences::awaitNone(std::chrono::milliseconds timeout) {
    std::unique_lock lock(m_mutex);
    // A worker that still holds the lock has yet to tell how its changes ended.
    const auto isNone = [this] {
        return std::all_of(m_domains.begin(), m_domains.end(),
                           [](const auto& entry) { return entry.second.changes.empty() && !entry.second.isWaitedFor; });
    };
    m_ended.wait_for(lock, timeout, isNone);
    std::vector<std::pair<std::string, std::size_t>> left;
    for (const auto& [name, domain] : m_domains)
        if (!domain.changes.empty()) left.emplace_back(name, domain.changes.size());
    return left;
}

} // namespace seat
