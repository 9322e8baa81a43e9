#pragma once

// A short memory for what is asked for again and again.

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

namespace seat {

template <class Key, class Value, std::size_t most> class RecentlyUsed {
public:
    // What was kept for the key, else what `make()` gives, which is kept instead of what was not used for longest.
    template <class Make> const Value& get(const Key& key, Make make) {
        const auto at = std::find_if(m_newestFirst.begin(), m_newestFirst.end(),
                                     [&](const auto& kept) { return kept.first == key; });
        if (at != m_newestFirst.end()) {
            std::rotate(m_newestFirst.begin(), at, at + 1);
        } else {
            std::pair<Key, Value> made(key, make());
            if (m_newestFirst.size() >= most) m_newestFirst.pop_back();
            m_newestFirst.insert(m_newestFirst.begin(), std::move(made));
        }
        return m_newestFirst.front().second;
    }

private:
    std::vector<std::pair<Key, Value>> m_newestFirst;
};

} // namespace seat
