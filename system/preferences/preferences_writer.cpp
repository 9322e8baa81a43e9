#include "system/preferences/preferences_writer.h"

#include "platform/foundation/NSData.h"
#include "platform/foundation/NSFileManager.h"
#include "platform/foundation/NSPropertyListSerialization.h"
#include "system/files/Descriptor.h"
#include "system/files/TemporaryFile.h"
#include "system/preferences/FileLock.h"
#include "system/preferences/PreferencesFile.h"
#include "system/preferences/write_steps.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <random>
#include <span>

namespace seat {
namespace {

// Never destroyed: a worker may still be writing when the process ends.
std::function<int(PreferencesWriteStep)>& probe() {
    static auto& function = *new std::function<int(PreferencesWriteStep)>;
    return function;
}

// A step that failed, with its error number; 0 is success.
int done(PreferencesWriteStep step) { return probe() ? probe()(step) : 0; }

// Only the holder of the lock makes temporaries of this name, so that any other found is a dead writer's.
const std::string temporaryMark = ".writing-";

std::string newSuffix() {
    std::random_device random;
    char digits[9];
    std::snprintf(digits, sizeof digits, "%08x", random());
    return temporaryMark + digits;
}

std::string lockName(const std::string& domain) { return ".lock." + domain; }

std::vector<std::string> leftoversOf(const std::string& folderPath, const std::string& name) {
    std::vector<std::string> leftovers;
    std::error_code ignored;
    for (const auto& entry : std::filesystem::directory_iterator(folderPath, ignored)) {
        std::string found = entry.path().filename().string();
        if (found.starts_with(name + temporaryMark)) leftovers.push_back(std::move(found));
    }
    return leftovers;
}

// With the lock held.
void removeLeftovers(int folder, const std::string& folderPath, const std::string& name) {
    for (const auto& leftover : leftoversOf(folderPath, name)) unlinkat(folder, leftover.c_str(), 0);
    removeDeadTemporariesBeside(folderPath + "/" + name); // those of whole-file writes have locks of their own
}

int writeAll(int descriptor, std::span<const std::uint8_t> bytes) {
    while (!bytes.empty()) {
        const ssize_t count = write(descriptor, bytes.data(), bytes.size());
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return errno;
        bytes = bytes.subspan(static_cast<std::size_t>(count));
    }
    return 0;
}

// Not every file system can refuse to replace by itself.
int renameToNewName(int folder, const std::string& from, const std::string& to) {
    if (renameat2(folder, from.c_str(), folder, to.c_str(), RENAME_NOREPLACE) == 0) return 0;
    if (errno != EINVAL && errno != ENOSYS) return -1;
    struct stat existing {};
    if (fstatat(folder, to.c_str(), &existing, AT_SYMLINK_NOFOLLOW) == 0) {
        errno = EEXIST;
        return -1;
    }
    return renameat(folder, from.c_str(), folder, to.c_str());
}

class Writer {
public:
    Writer(int folder, std::string folderPath, std::string domain)
        : m_folder(folder), m_folderPath(std::move(folderPath)), m_domain(std::move(domain)),
          m_name(m_domain + ".plist") {}

    PreferencesWriteResult change(const std::vector<std::pair<std::string, id>>& changes);

private:
    enum class Outcome { Stored, Failed, ChangedMeanwhile };
    Outcome tryOnce(const std::vector<std::pair<std::string, id>>& changes);
    Outcome replace(const PreferencesFile& before, const NSData& data);
    int fill(int descriptor, const PreferencesFile& before, std::span<const std::uint8_t> bytes);
    bool moveAside(const PreferencesFile& file);
    Outcome failed(const char* operation, int number);

    int m_folder;
    std::string m_folderPath;
    std::string m_domain;
    std::string m_name;
    std::string m_reason;
    std::string m_aside;
};

PreferencesWriteResult Writer::change(const std::vector<std::pair<std::string, id>>& changes) {
    if (const int number = done(PreferencesWriteStep::Locked)) failed("locking", number);
    // Not every program knows the lock. Whoever replaced the file since it was read must not lose what it wrote.
    Outcome outcome = m_reason.empty() ? Outcome::ChangedMeanwhile : Outcome::Failed;
    for (int attempt = 0; attempt < 10 && outcome == Outcome::ChangedMeanwhile; ++attempt) outcome = tryOnce(changes);
    if (outcome == Outcome::ChangedMeanwhile) m_reason = "another program keeps changing it";
    const char* const separator = m_aside.empty() || m_reason.empty() ? "" : "; ";
    return {outcome == Outcome::Stored, false, m_aside + separator + m_reason};
}

Writer::Outcome Writer::failed(const char* operation, int number) {
    m_reason = std::string(operation) + ": " + strerror(number);
    return Outcome::Failed;
}

Writer::Outcome Writer::tryOnce(const std::vector<std::pair<std::string, id>>& changes) {
    removeLeftovers(m_folder, m_folderPath, m_name);
    PreferencesFile file = PreferencesFile::read(m_folder, m_name);
    if (const int number = done(PreferencesWriteStep::ReadAfresh)) return failed("reading", number);
    if (file.state == PreferencesFile::State::Unreadable) {
        m_reason = file.reason;
        return Outcome::Failed;
    }
    if (file.state == PreferencesFile::State::Damaged) {
        if (!file.isUnchanged(m_folder, m_name)) return Outcome::ChangedMeanwhile;
        if (!moveAside(file)) return Outcome::Failed;
        file.state = PreferencesFile::State::Missing;
    }
    const auto values = file.values ? file.values : NSMutableDictionary::dictionary();
    for (const auto& [key, value] : changes) values->setObject_forKey(value, key);

    std::shared_ptr<NSError> error;
    const auto data = NSPropertyListSerialization::dataWithPropertyList_format_options_error(
        id(values), NSPropertyListBinaryFormat_v1_0, 0, &error);
    if (!data) {
        m_reason = error ? error->localizedDescription() : "no property list";
        return Outcome::Failed;
    }
    return replace(file, *data);
}

int Writer::fill(int descriptor, const PreferencesFile& before, std::span<const std::uint8_t> bytes) {
    const bool isNew = before.state == PreferencesFile::State::Missing;
    // Whoever could read the file still can.
    if (!isNew && fchmod(descriptor, (before.status.st_mode & 0777) | 0600) != 0) return errno;
    const std::size_t half = bytes.size() / 2;
    if (const int number = writeAll(descriptor, bytes.first(half))) return number;
    if (const int number = done(PreferencesWriteStep::TemporaryHalfWritten)) return number;
    if (const int number = writeAll(descriptor, bytes.subspan(half))) return number;
    if (const int number = done(PreferencesWriteStep::TemporaryWritten)) return number;
    if (fsync(descriptor) != 0) return errno;
    return done(PreferencesWriteStep::TemporaryFlushed);
}

Writer::Outcome Writer::replace(const PreferencesFile& before, const NSData& data) {
    const std::string temporary = m_name + newSuffix();
    const Descriptor descriptor(
        openat(m_folder, temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, 0600));
    if (!descriptor) return failed("creating a file beside it", errno);
    int number = done(PreferencesWriteStep::TemporaryCreated);
    if (number == 0) number = fill(descriptor.get(), before, data.bytes());
    if (number == 0 && !before.isUnchanged(m_folder, m_name)) {
        unlinkat(m_folder, temporary.c_str(), 0);
        return Outcome::ChangedMeanwhile;
    }
    if (number == 0 && renameat(m_folder, temporary.c_str(), m_folder, m_name.c_str()) != 0) number = errno;
    if (number != 0) {
        unlinkat(m_folder, temporary.c_str(), 0);
        return failed("writing", number);
    }
    // From here on the new file stands; only a power cut could bring back the old one.
    done(PreferencesWriteStep::Renamed);
    fsync(m_folder);
    done(PreferencesWriteStep::FolderFlushed);
    return Outcome::Stored;
}

bool Writer::moveAside(const PreferencesFile& file) {
    // The name must not begin with the file's, or it would look like a write under way.
    for (int n = 1; n < 1000; ++n) {
        const std::string aside = m_domain + ".damaged-" + std::to_string(n);
        if (renameToNewName(m_folder, m_name, aside) == 0) {
            m_aside = "it was damaged (" + file.reason + ") and is moved aside to " + aside;
            if (const int number = done(PreferencesWriteStep::MovedAside)) {
                failed("moving the damaged file aside", number);
                return false;
            }
            return true;
        }
        if (errno != EEXIST) {
            failed("moving the damaged file aside", errno);
            return false;
        }
    }
    m_reason = "it is damaged, and too many damaged ones lie beside it";
    return false;
}

} // namespace

void setPreferencesWriteProbe(std::function<int(PreferencesWriteStep)> function) { probe() = std::move(function); }

PreferencesWriteResult changePreferencesFile(const std::string& folder, const std::string& domain,
                                             PreferencesChanges& changes, std::chrono::milliseconds timeout) {
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    const Descriptor descriptor(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!descriptor) return {false, false, "its folder: " + (error ? error.message() : strerror(errno))};
    const FileLock lock(descriptor.get(), lockName(domain), timeout);
    if (!lock.isHeld()) return {false, lock.isBusy(), lock.reason()};
    const auto taken = changes.take();
    // Another thread has stored them with its own.
    if (taken.empty()) return {true, false, {}};
    auto result = Writer(descriptor.get(), folder, domain).change(taken);
    if (result.isStored) changes.stored();
    return result;
}

void removeDeadWritersLeftovers(const std::string& folder, const std::string& domain) {
    const std::string name = domain + ".plist";
    removeDeadTemporariesBeside(folder + "/" + name);
    // The lock leaves a file behind: not for nothing.
    if (leftoversOf(folder, name).empty()) return;
    const Descriptor descriptor(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!descriptor) return;
    const FileLock lock(descriptor.get(), lockName(domain), std::chrono::milliseconds(0));
    if (lock.isHeld()) removeLeftovers(descriptor.get(), folder, name);
}

} // namespace seat
