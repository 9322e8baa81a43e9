#include "tests/machine/jvninputd/known_keys.h"

#include "system/input/hid_usage.h"

#include <set>

namespace machine {

std::vector<KnownKey> everyKnownKey() {
    std::vector<KnownKey> keys;
    for (std::uint16_t key = 1; key < 256; ++key)
        if (const long usage = seat::hidUsageForKernelKey(key); usage > 0)
            keys.push_back({key, static_cast<int>(usage)});
    return keys;
}

Bindings bindingsOf(const std::vector<KnownKey>& keys, const std::function<int(const KnownKey&)>& codeOf) {
    Bindings bindings;
    std::set<int> bound;
    for (const KnownKey& key : keys)
        if (bound.insert(key.usage).second) bindings.emplace_back(key.usage, codeOf(key));
    return bindings;
}

} // namespace machine
