#pragma once

#include "platform/foundation/id.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

// String keys to value objects, enumerated in the order in which the keys first came in. Look-up, insertion and removal
// take constant time, however many keys there are. Not safe for concurrent change.
class NSMutableDictionary final : public NSObject {
    NS_CLASS(NSMutableDictionary)

    static std::shared_ptr<NSMutableDictionary> dictionary();
    // The file as a property list, XML or binary; nil when it is missing, unreadable or no dictionary.
    static std::shared_ptr<NSMutableDictionary> dictionaryWithContentsOfFile(const std::string& path);

    std::size_t count() const { return m_index.size(); }
    // nil when absent. The reference holds until the dictionary changes.
    const id& objectForKey(std::string_view key) const;
    // Keeps the place of a key that is already there. A nil object removes the key.
    void setObject_forKey(id object, std::string_view key);
    void removeObjectForKey(std::string_view key);
    std::vector<std::string> allKeys() const;

    // A shallow copy in the same order.
    std::shared_ptr<NSMutableDictionary> mutableCopy() const;

    // Calls `visit(key, object)` in order until it returns false.
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
    };
    void compact();

    std::vector<Entry> m_entries;
    std::unordered_map<std::string, std::size_t> m_index;
};
using NSDictionary = NSMutableDictionary;
