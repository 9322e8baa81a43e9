#include "system/preferences/KnownPreferences.h"

#include "platform/foundation/NSArray.h"
#include "system/files/FilePlace.h"

#include <sys/stat.h>
#include <utility>

namespace seat {
namespace {

// The file system's times move in steps of up to ten milliseconds. Of two changes within one step the second does not
// show, so what is read that soon after a change is not kept.
constexpr long stepNanoseconds = 20'000'000;

bool isSettled(const struct stat& status, const timespec& begun) {
    const auto seconds = begun.tv_sec - status.st_ctim.tv_sec;
    return seconds > 1 ||
           (seconds >= 0 && seconds * 1'000'000'000 + begun.tv_nsec - status.st_ctim.tv_nsec > stepNanoseconds);
}

} // namespace

bool mayBeChanged(const id& value) {
    return value.objectPointer<NSMutableDictionary>() || value.objectPointer<NSArray>();
}

timespec KnownPreferences::now() {
    timespec time{};
    ::clock_gettime(CLOCK_REALTIME_COARSE, &time);
    return time;
}

std::optional<id> KnownPreferences::value(const std::string& path, const std::string& key) const {
    std::shared_ptr<const File> known;
    {
        const std::lock_guard lock(m_mutex);
        known = m_known;
    }
    struct stat status {};
    if (!known || known->path != path || ::stat(path.c_str(), &status) != 0) return std::nullopt;
    const auto& then = known->file.status;
    // Its times of change too: the other one can be set by anybody.
    const bool isSame = isSameVersion(status, then) && status.st_ctim.tv_sec == then.st_ctim.tv_sec &&
                        status.st_ctim.tv_nsec == then.st_ctim.tv_nsec;
    if (!isSame) return std::nullopt;
    const id& found = known->file.values->objectForKey(key);
    if (mayBeChanged(found)) return std::nullopt;
    return found;
}

void KnownPreferences::keep(std::string path, PreferencesFile&& file, const std::optional<timespec>& begun) {
    const bool isLarge = file.values && std::cmp_greater(file.status.st_size, largePreferencesFile);
    std::shared_ptr<const File> known;
    if (isLarge && (!begun || isSettled(file.status, *begun)))
        known = std::make_shared<const File>(File{path, std::move(file)});
    {
        const std::lock_guard lock(m_mutex);
        if (!known && m_known && m_known->path != path) return;
        m_known.swap(known);
    }
    // The former one dies here, outside of the lock.
}

} // namespace seat
