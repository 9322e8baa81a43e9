#include "platform/foundation/NSDictionary.h"

#include <algorithm>
#include <functional>
#include <utility>

NS_CLASS_IMPLEMENTATION(NSMutableDictionary, NSObject)

namespace {

const id& nothing() {
    static const auto* const nil = new id;
    return *nil;
}

std::size_t hashOf(std::string_view key) { return std::hash<std::string_view>()(key); }

} // namespace

std::shared_ptr<NSMutableDictionary> NSMutableDictionary::dictionary() { return alloc(); }

std::size_t NSMutableDictionary::indexOf(std::string_view key, std::size_t hash) const {
    if (m_slots.empty()) return absent;
    const std::size_t mask = m_slots.size() - 1;
    for (std::size_t at = hash & mask; m_slots[at]; at = (at + 1) & mask) {
        const Entry& entry = m_entries[m_slots[at] - 1];
        if (entry.hash == hash && entry.object && entry.key == key) return m_slots[at] - 1;
    }
    return absent;
}

const id& NSMutableDictionary::objectForKey(std::string_view key) const {
    const std::size_t index = indexOf(key, hashOf(key));
    return index == absent ? nothing() : m_entries[index].object;
}

void NSMutableDictionary::setObject_forKey(id object, std::string_view key) {
    if (!object) {
        removeObjectForKey(key);
        return;
    }
    const std::size_t hash = hashOf(key);
    if (const std::size_t index = indexOf(key, hash); index != absent) {
        m_entries[index].object = std::move(object);
        return;
    }
    // `key` may be a view of one of our own entries, which making room moves.
    Entry entry{std::string(key), std::move(object), hash};
    if (2 * (m_entries.size() + 1) > m_slots.size()) rehash(2 * (count() + 1));
    const std::size_t mask = m_slots.size() - 1;
    std::size_t at = hash & mask;
    while (m_slots[at]) at = (at + 1) & mask;
    m_entries.push_back(std::move(entry));
    m_slots[at] = static_cast<std::uint32_t>(m_entries.size());
}

void NSMutableDictionary::removeObjectForKey(std::string_view key) {
    const std::size_t index = indexOf(key, hashOf(key));
    if (index == absent) return;
    // The object may hold the last reference to something that reads this dictionary while it dies.
    const id dying = std::exchange(m_entries[index].object, id());
    ++m_removed;
}

void NSMutableDictionary::reserve(std::size_t count) {
    if (2 * count > m_slots.size()) rehash(count);
    m_entries.reserve(count);
}

void NSMutableDictionary::rehash(std::size_t count) {
    std::erase_if(m_entries, [](const Entry& entry) { return !entry.object; });
    m_removed = 0;
    std::size_t size = 8;
    while (size < 2 * std::max(count, m_entries.size())) size *= 2;
    m_slots.assign(size, 0);
    for (std::size_t index = 0; index < m_entries.size(); ++index) {
        std::size_t at = m_entries[index].hash & (size - 1);
        while (m_slots[at]) at = (at + 1) & (size - 1);
        m_slots[at] = static_cast<std::uint32_t>(index + 1);
    }
}

std::vector<std::string> NSMutableDictionary::allKeys() const {
    std::vector<std::string> keys;
    keys.reserve(count());
    enumerate([&](const std::string& key, const id&) {
        keys.push_back(key);
        return true;
    });
    return keys;
}

std::shared_ptr<NSMutableDictionary> NSMutableDictionary::mutableCopy() const {
    const auto copy = dictionary();
    copy->m_entries = m_entries;
    copy->rehash(count());
    return copy;
}

bool NSMutableDictionary::isEqual(const NSObject& other) const {
    const auto* const dictionary = dynamic_cast<const NSMutableDictionary*>(&other);
    if (!dictionary || dictionary->count() != count()) return false;
    if (dictionary == this) return true;
    bool equal = true;
    enumerate([&](const std::string& key, const id& object) {
        equal = dictionary->objectForKey(key) == object;
        return equal;
    });
    return equal;
}
