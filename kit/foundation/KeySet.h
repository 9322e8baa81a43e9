#pragma once

// The keys of all dictionaries of a text, as places in it: tells of one that comes twice in its dictionary.

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <vector>

namespace seat {

class KeySet {
public:
    // The text stays where it is, and is shorter than 2^32.
    explicit KeySet(std::string_view text) : m_text(text) {}

    // False when the dictionary has that key already. Dictionaries are told apart by numbers from 1. A key that is
    // made to meet many others is let pass.
    bool insert(std::uint32_t dictionary, std::size_t at, std::size_t length) {
        if (4 * (m_count + 1) > 3 * m_slots.size()) grow();
        const Slot key{hashOf(m_text.substr(at, length), dictionary), static_cast<std::uint32_t>(at),
                       static_cast<std::uint32_t>(length), dictionary};
        Slot* const slot = find(key);
        if (!slot) return true;
        if (slot->dictionary != 0) return false;
        *slot = key;
        ++m_count;
        return true;
    }

private:
    struct Slot {
        std::uint32_t hash = 0;
        std::uint32_t at = 0;
        std::uint32_t length = 0;
        std::uint32_t dictionary = 0; // 0: free
    };
    static constexpr std::uint64_t multiplier = 0x9e3779b97f4a7c15;
    static constexpr unsigned mostSteps = 64;

    static std::uint32_t hashOf(std::string_view key, std::uint32_t dictionary) {
        std::uint64_t hash = (key.size() + dictionary) * multiplier;
        const auto mix = [&hash](std::uint64_t word) {
            hash = (hash ^ word) * multiplier;
            hash ^= hash >> 32;
        };
        std::uint64_t word = 0;
        for (; key.size() >= sizeof word; key.remove_prefix(sizeof word)) {
            std::memcpy(&word, key.data(), sizeof word);
            mix(word);
        }
        word = 0;
        for (const char c : key) word = word << 8 | static_cast<std::uint8_t>(c);
        mix(word);
        return static_cast<std::uint32_t>(hash >> 16);
    }

    bool isSame(const Slot& a, const Slot& b) const {
        return a.hash == b.hash && a.dictionary == b.dictionary &&
               m_text.substr(a.at, a.length) == m_text.substr(b.at, b.length);
    }

    // The slot that holds the key, or a free one for it; nullptr when there is none near.
    Slot* find(const Slot& key) {
        const std::size_t mask = m_slots.size() - 1;
        for (unsigned step = 0; step < mostSteps; ++step) {
            Slot& slot = m_slots[(key.hash + step) & mask];
            if (slot.dictionary == 0 || isSame(slot, key)) return &slot;
        }
        return nullptr;
    }

    void grow() {
        std::vector<Slot> former(m_slots.empty() ? 64 : 4 * m_slots.size());
        former.swap(m_slots);
        for (const Slot& slot : former)
            if (slot.dictionary != 0)
                if (Slot* const place = find(slot)) *place = slot;
    }

    std::string_view m_text;
    std::vector<Slot> m_slots;
    std::size_t m_count = 0;
};

} // namespace seat
