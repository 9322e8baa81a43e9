#pragma once

#include "platform/foundation/id.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// String keys to value objects, enumerated in the order in which the keys first came in. Look-up, insertion and removal
// take constant time, however many keys there are. Not safe for concurrent change.
class NSMutableDictionary final : public NSObject {
    NS_CLASS(NSMutableDictionary)

    // Empty.
    static std::shared_ptr<NSMutableDictionary> dictionary();
    // The file at the phone's path as a property list, XML or binary, within the bounds of NSPropertyListSerialization;
    // nil when it is missing, and, with a logged reason, when it is unreadable, refused or no dictionary. Of two equal
    // keys in the file the last one counts.
    static std::shared_ptr<NSMutableDictionary> dictionaryWithContentsOfFile(const std::string& path);

    // Of keys.
    std::size_t count() const { return m_entries.size() - m_removed; }
    // nil when absent. The reference holds until the dictionary changes.
    const id& objectForKey(std::string_view key) const;
    // Keeps the place of a key that is already there. A nil object removes the key.
    void setObject_forKey(id object, std::string_view key);
    void removeObjectForKey(std::string_view key);
    // In order.
    std::vector<std::string> allKeys() const;
    // Makes room for so many keys at once.
    void reserve(std::size_t count);

    // A shallow copy in the same order: the values are shared, the list of keys is not.
    std::shared_ptr<NSMutableDictionary> mutableCopy() const;

    // Calls `visit(key, object)` in order until it returns false. The visitor may remove keys, but not set any.
    template <class Visit> void enumerate(Visit&& visit) const {
        for (const auto& entry : m_entries)
            if (entry.object && !visit(entry.key, entry.object)) return;
    }

    // Same keys with equal values; the order does not count.
    bool isEqual(const NSObject& other) const override;

private:
    struct Entry {
        std::string key;
        id object; // nil: removed, waiting to be compacted
        std::size_t hash;
    };
    static constexpr std::size_t absent = static_cast<std::size_t>(-1);

    std::size_t indexOf(std::string_view key, std::size_t hash) const;
    // Drops the removed entries and gives the slots room for `count` in all.
    void rehash(std::size_t count);

    std::vector<Entry> m_entries;
    std::size_t m_removed = 0;
    // Open addressing, a power of two: an index into m_entries plus one, or 0 for a free slot.
    std::vector<std::uint32_t> m_slots;
};
using NSDictionary = NSMutableDictionary;
