#include "system/preferences/preferences_writer.h"

#include "kit/foundation/property_list.h"
#include "platform/foundation/NSDictionary.h"
#include "system/files/TemporaryFile.h"
#include "system/files/make_folders.h"
#include "system/files/replace_file.h"
#include "system/files/uninterrupted.h"
#include "system/preferences/FileLock.h"
#include "system/preferences/PreferencesFile.h"
#include "system/preferences/copied_value.h"

#include <cstring>
#include <fcntl.h>

namespace seat {
namespace {

// How often a write begins anew, since the file was changed meanwhile, or since its lock was removed.
constexpr int mostChanges = 10;
constexpr int mostLocks = 1000;

Descriptor openFolder(const std::string& path) {
    return Descriptor(uninterrupted([&] { return ::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); }));
}

// Not every file system can refuse to replace by itself.
int renameToNewName(int folder, const std::string& from, const std::string& to) {
    if (::renameat2(folder, from.c_str(), folder, to.c_str(), RENAME_NOREPLACE) == 0) return 0;
    if (errno != EINVAL && errno != ENOSYS) return errno;
    struct stat existing {};
    if (::fstatat(folder, to.c_str(), &existing, AT_SYMLINK_NOFOLLOW) == 0) return EEXIST;
    return ::renameat(folder, from.c_str(), folder, to.c_str()) == 0 ? 0 : errno;
}

class Writer {
public:
    enum class Outcome { Stored, Failed, ChangedMeanwhile };

    Writer(std::string path, std::string domain, const FileLock& lock)
        : m_path(std::move(path)), m_domain(std::move(domain)), m_lock(lock) {}

    Outcome tryOnce(const PreferencesChange& change);
    PreferencesWriteResult result(Outcome outcome);

private:
    Outcome failed(std::string reason);
    Outcome moveAside(FilePlace& place, const PreferencesFile& file);
    Outcome replace(const FilePlace& place, const PreferencesFile& before, const PreferencesChange& change);

    std::string m_path;
    std::string m_domain;
    const FileLock& m_lock;
    std::string m_reason;
    std::string m_aside;
};

PreferencesWriteResult Writer::result(Outcome outcome) {
    if (outcome == Outcome::ChangedMeanwhile) m_reason = "another program keeps changing it";
    return {outcome == Outcome::Stored, false, m_reason, m_aside};
}

Writer::Outcome Writer::failed(std::string reason) {
    m_reason = std::move(reason);
    return Outcome::Failed;
}

Writer::Outcome Writer::tryOnce(const PreferencesChange& change) {
    auto place = FilePlace::find(m_path);
    if (place.error != 0) return failed(place.reason);
    PreferencesFile file = PreferencesFile::read(place.folder.get(), place.name);
    using enum PreferencesFile::State;
    if (file.state == Unreadable || file.state == TooLarge) return failed(file.reason);
    if (place.exists != (file.state != Missing)) return Outcome::ChangedMeanwhile;
    if (file.state == Damaged) {
        if (!file.isUnchanged(place.folder.get(), place.name)) return Outcome::ChangedMeanwhile;
        if (moveAside(place, file) == Outcome::Failed) return Outcome::Failed;
        file.state = Missing;
    }
    return replace(place, file, change);
}

Writer::Outcome Writer::replace(const FilePlace& place, const PreferencesFile& before,
                                const PreferencesChange& change) {
    auto data = change.whole;
    if (!data || !change.keys.empty()) {
        std::string refusal;
        auto values = before.values;
        if (data) values = readPropertyList(data->bytes(), nullptr, refusal).object<NSMutableDictionary>();
        if (!values) values = NSMutableDictionary::dictionary();
        for (const auto& [key, value] : change.keys) values->setObject_forKey(copiedValue(value), key);
        data = writeBinaryPropertyList(id(values), refusal);
        if (!data) return failed("what is to be written " + refusal);
    }
    const auto isStillRight = [&] { return m_lock.isCurrent() && before.isUnchanged(place.folder.get(), place.name); };
    const int number = replaceFile(place, data->bytes(), isStillRight);
    if (number == ESTALE) return Outcome::ChangedMeanwhile;
    return number == 0 ? Outcome::Stored : failed(strerror(number));
}

Writer::Outcome Writer::moveAside(FilePlace& place, const PreferencesFile& file) {
    // The name must not begin with the file's, or it would look like a write under way.
    for (int n = 1; n < 1000; ++n) {
        const std::string aside = m_domain + ".damaged-" + std::to_string(n);
        const int number = renameToNewName(place.folder.get(), place.name, aside);
        if (number == EEXIST) continue;
        if (number != 0) return failed(std::string("moving the damaged file aside: ") + strerror(number));
        m_aside = aside + " (" + file.reason + ")";
        place.exists = false;
        return Outcome::Stored;
    }
    return failed("it is damaged, and too many damaged ones lie beside it");
}

} // namespace

PreferencesWriteResult changePreferencesFile(const std::string& folder, const std::string& domain,
                                             PreferencesChanges& changes,
                                             std::optional<std::chrono::milliseconds> timeout) {
    const auto refused = [](std::string reason) { return PreferencesWriteResult{false, false, std::move(reason), {}}; };
    if (const int number = makeFolders(folder)) return refused(std::string("its folder: ") + strerror(number));
    const Descriptor descriptor = openFolder(folder);
    if (!descriptor) return refused(std::string("its folder: ") + strerror(errno));
    std::string aside;
    // Not every program knows the lock, and a lock's file can be removed. Whoever replaced the file since it was read
    // must not lose what it wrote.
    const std::string path = folder + "/" + domain + ".plist";
    int changed = 0;
    int lost = 0;
    for (;;) {
        const FileLock lock(descriptor.get(), ".lock." + domain, timeout);
        if (!lock.isHeld()) return {false, lock.isBusy(), lock.reason(), {}};
        const auto taken = changes.take();
        // Another thread has stored them with its own.
        if (!taken.whole && taken.keys.empty()) return {true, false, {}, aside};
        Writer writer(path, domain, lock);
        const auto outcome = writer.tryOnce(taken);
        // At once: what is in the file is in the file, whatever fails from here on.
        if (outcome == Writer::Outcome::Stored) changes.stored();
        auto result = writer.result(outcome);
        if (!result.aside.empty()) aside = result.aside;
        result.aside = aside;
        if (outcome != Writer::Outcome::ChangedMeanwhile) return result;
        if (lock.isCurrent() ? ++changed == mostChanges : ++lost == mostLocks) return result;
    }
}

void removeDeadWritersLeftovers(const std::string& folder, const std::string& domain) {
    if (const Descriptor descriptor = openFolder(folder)) removeDeadTemporaries(descriptor.get(), domain + ".plist");
}

} // namespace seat
