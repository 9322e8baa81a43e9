#include "desktop/painting/text_cache.h"

#include "platform/dispatch.h"

#include <list>
#include <unordered_map>

namespace seat {

namespace {

struct Entry {
    std::string key;
    std::shared_ptr<const TextLayout> layout;
};

// Newest first. Never destroyed: shaped text must not outlive the toolkit's fonts in a static's destructor.
struct Cache {
    std::list<Entry> entries;
    std::unordered_map<std::string_view, std::list<Entry>::iterator> byKey; // the views are of the entries' keys
};
Cache& cache() {
    static auto* const shared = new Cache;
    return *shared;
}

template <class T> void appendBytes(std::string& key, const T& value) {
    key.append(reinterpret_cast<const char*>(&value), sizeof value);
}

// Everything but the colours.
std::string keyFor(std::span<const TextRun> runs, double maxWidth, int lines, double scale) {
    std::string key;
    appendBytes(key, maxWidth);
    appendBytes(key, lines);
    appendBytes(key, scale);
    for (const TextRun& run : runs) {
        appendBytes(key, run.font->pointSize());
        appendBytes(key, run.font->isBold());
        appendBytes(key, run.text.size());
        key += run.text;
    }
    return key;
}

} // namespace

std::shared_ptr<const TextLayout> cachedTextLayout(std::span<const TextRun> runs, double maxWidth, int lines,
                                                   double scale, const std::function<TextLayout()>& make) {
    if (!dispatch_is_main_thread()) return std::make_shared<TextLayout>(make());
    auto& [entries, byKey] = cache();
    std::string key = keyFor(runs, maxWidth, lines, scale);
    if (const auto found = byKey.find(key); found != byKey.end()) {
        entries.splice(entries.begin(), entries, found->second);
        return entries.front().layout;
    }
    entries.push_front({std::move(key), std::make_shared<TextLayout>(make())});
    byKey.emplace(entries.front().key, entries.begin());
    if (entries.size() > mostCachedTextLayouts) {
        byKey.erase(entries.back().key);
        entries.pop_back();
    }
    return entries.front().layout;
}

void forgetTextLayouts() {
    cache().byKey.clear();
    cache().entries.clear();
}

std::size_t cachedTextLayoutCount() { return cache().entries.size(); }

} // namespace seat
