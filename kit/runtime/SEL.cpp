#include "platform/runtime/Class.h"

#include <mutex>
#include <shared_mutex>
#include <unordered_set>

namespace {

struct NameHash {
    using is_transparent = void;
    std::size_t operator()(std::string_view name) const { return std::hash<std::string_view>()(name); }
};

// Never destroyed: selectors are used by other statics on their way out. The nodes of the set do not move.
struct Names {
    std::shared_mutex mutex;
    std::unordered_set<std::string, NameHash, std::equal_to<>> set;

    static Names& shared() {
        static auto* const names = new Names;
        return *names;
    }

    const std::string* intern(std::string_view name) {
        {
            const std::shared_lock lock(mutex);
            if (const auto found = set.find(name); found != set.end()) return &*found;
        }
        const std::unique_lock lock(mutex);
        return &*set.emplace(name).first;
    }
};

} // namespace

SEL::SEL(const char* name) : m_name(name ? Names::shared().intern(name) : nullptr) {}
SEL::SEL(std::string_view name) : m_name(Names::shared().intern(name)) {}
SEL::SEL(const std::string& name) : m_name(Names::shared().intern(name)) {}

const std::string& SEL::name() const {
    static const auto* const none = new std::string;
    return m_name ? *m_name : *none;
}
