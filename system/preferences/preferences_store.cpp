#include "system/preferences/preferences_store.h"

#include "kit/foundation/property_list.h"
#include "platform/dispatch.h"
#include "platform/foundation/NSDictionary.h"
#include "platform/log.h"
#include "system/files/Descriptor.h"
#include "system/files/root.h"
#include "system/files/uninterrupted.h"
#include "system/preferences/KnownPreferences.h"
#include "system/preferences/PendingPreferences.h"
#include "system/preferences/PreferencesFile.h"
#include "system/preferences/copied_value.h"
#include "system/preferences/preferences_notices.h"
#include "system/preferences/preferences_writer.h"

#include <atomic>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <map>
#include <mutex>
#include <new>
#include <sys/stat.h>

namespace seat {
namespace {

using Timeout = std::optional<std::chrono::milliseconds>;

constexpr const char* fileEnd = ".plist";
constexpr const char* outOfMemory = "there is no memory left";

// Never destroyed: workers may use them to the end of the process.
PendingPreferences& pending() {
    static auto& changes = *new PendingPreferences;
    return changes;
}

KnownPreferences& known() {
    static auto& preferences = *new KnownPreferences;
    return preferences;
}

std::string folder() { return hostPath("/var/mobile/Library/Preferences"); }
std::string fileOf(const std::string& domain) { return folder() + "/" + domain + fileEnd; }

// Beyond what is read at all it is refused at once.
bool hasLargeFile(const std::string& domain) {
    struct stat status {};
    return ::stat(fileOf(domain).c_str(), &status) == 0 && std::cmp_greater(status.st_size, largePreferencesFile) &&
           std::cmp_less_equal(status.st_size, propertyListMaximumLength);
}

bool isDomain(const std::string& domain) {
    return !domain.empty() && domain.size() <= 200 && domain.front() != '.' && domain.find('/') == std::string::npos &&
           domain.find('\0') == std::string::npos;
}

PreferencesFile readFile(const std::string& domain) {
    constexpr int flags = O_RDONLY | O_DIRECTORY | O_CLOEXEC;
    const Descriptor directory(uninterrupted([] { return ::open(folder().c_str(), flags); }));
    if (directory) return PreferencesFile::read(directory.get(), domain + fileEnd);
    PreferencesFile file;
    if (errno == ENOENT) return file;
    file.state = PreferencesFile::State::Unreadable;
    file.reason = std::string("its folder: ") + strerror(errno);
    return file;
}

// What a worker has stored is read by it too, while the lock keeps others from writing: who reads it next, on the main
// thread most likely, finds it read.
void readStored(const std::string& domain) {
    if (dispatch_is_main_thread() || !hasLargeFile(domain)) return;
    try {
        known().keep(fileOf(domain), readFile(domain), std::nullopt);
    } catch (const std::bad_alloc&) {
        // It is in the file all the same.
        NSLog("reading the preferences %s: %s", domain.c_str(), outOfMemory);
    }
}

// The changes of one domain on their way into its file.
class ChangesToStore final : public PreferencesChanges {
public:
    explicit ChangesToStore(const std::string& domain) : m_domain(domain) {}

    PreferencesChange take() override {
        m_taken = pending().all(m_domain);
        PreferencesChange change;
        for (const auto& each : m_taken) {
            // What was changed before the whole file was replaced is changed no more.
            if (each->whole)
                change = {each->whole, {}};
            else
                change.keys.emplace_back(each->key, copiedValue(each->value));
        }
        return change;
    }
    void stored() override {
        readStored(m_domain);
        pending().end(m_domain, m_taken, PreferenceWrite::Stored);
    }

private:
    const std::string& m_domain;
    PendingPreferences::Changes m_taken;
};

std::atomic<bool> somethingWasLost = false; // and nothing stored since

// Takes no memory that it could not do without.
void lose(const std::string& domain, const char* reason, const PendingPreferences::Change& besides = {}) {
    NSLog("writing the preferences %s: %s; what was to be stored is lost", domain.c_str(), reason);
    pending().endAll(domain, PreferenceWrite::Failed, besides);
    somethingWasLost = true;
    tellOfPreferences(PreferencesNotice::What::NotStored, domain, reason);
}

// False when somebody else holds the lock still.
bool store(const std::string& domain, Timeout timeout) {
    ChangesToStore changes(domain);
    const auto result = changePreferencesFile(folder(), domain, changes, timeout);
    if (result.isBusy) return false;
    if (!result.aside.empty()) {
        NSLog("writing the preferences %s: the file was damaged and is moved aside to %s", domain.c_str(),
              result.aside.c_str());
        tellOfPreferences(PreferencesNotice::What::MovedAside, domain, result.aside.c_str());
    }
    if (result.isStored) {
        if (somethingWasLost.exchange(false)) tellOfPreferences(PreferencesNotice::What::Stored, domain, "");
        return true;
    }
    lose(domain, result.reason.c_str());
    return true;
}

void storeOnWorker(const std::string& domain) {
    do {
        try {
            store(domain, {});
        } catch (const std::bad_alloc&) {
            lose(domain, outOfMemory);
        }
    } while (!pending().endWaiting(domain));
}

void waitOnWorker(const std::string& domain) {
    if (!pending().beginWaiting(domain)) return;
    try {
        dispatch_async(dispatch_get_global_queue(DISPATCH_QUEUE_PRIORITY_DEFAULT, 0),
                       [domain] { storeOnWorker(domain); });
    } catch (...) {
        pending().giveUpWaiting(domain);
        throw;
    }
}

// The main thread leaves it to a worker then.
bool takesLong(const std::string& domain, const PendingPreference& change) {
    return dispatch_is_main_thread() &&
           ((change.whole && change.whole->length() > largePreferencesFile) || hasLargeFile(domain));
}

// Makes the change, unless it is refused, and sees it on its way.
template <class Make> PreferenceWrite change(const std::string& domain, Make make) {
    PendingPreferences::Change change;
    try {
        change = make();
        if (!change) return PreferenceWrite::Failed;
        if (!pending().add(domain, change) &&
            (takesLong(domain, *change) || !store(domain, std::chrono::milliseconds(0))))
            waitOnWorker(domain);
    } catch (const std::bad_alloc&) {
        lose(domain, outOfMemory, change);
    }
    return change ? pending().leave(change) : PreferenceWrite::Failed;
}

// What is told or done once, rather than with each read.
class FirstReads {
public:
    void tidy(const std::string& domain) {
        const std::string where = folder();
        {
            const std::lock_guard lock(m_mutex);
            if (std::exchange(m_tidied[domain], where) == where) return;
        }
        // Not each time: a writer that is killed is rare, and one that writes cleans up as well.
        removeDeadWritersLeftovers(where, domain);
    }
    void tellFailure(const std::string& domain, const std::string& reason) {
        {
            const std::lock_guard lock(m_mutex);
            if (std::exchange(m_failures[domain], reason) == reason) return;
        }
        if (!reason.empty()) NSLog("reading the preferences %s: %s", domain.c_str(), reason.c_str());
    }

private:
    std::mutex m_mutex;
    std::map<std::string, std::string> m_tidied;   // the folder in which dead writers' files have been looked for
    std::map<std::string, std::string> m_failures; // the last failure to read
};

FirstReads& firstReads() {
    static auto& first = *new FirstReads;
    return first;
}

std::shared_ptr<NSMutableDictionary> dictionary(const NSData& data) {
    std::string refusal;
    return readPropertyList(data.bytes(), nullptr, refusal).object<NSMutableDictionary>();
}

// Of the whole file that waits.
id pendingValue(PendingPreference& change, const std::string& key) {
    std::call_once(change.isWholeRead, [&change] { change.wholeValues = dictionary(*change.whole); });
    if (!change.wholeValues) return {};
    id value = change.wholeValues->objectForKey(key);
    return mayBeChanged(value) ? dictionary(*change.whole)->objectForKey(key) : value;
}

} // namespace

id preferenceValue(const std::string& domain, const std::string& key) {
    if (!isDomain(domain)) return {};
    const auto changes = pending().all(domain);
    for (auto change = changes.rbegin(); change != changes.rend(); ++change) {
        if ((*change)->whole) return pendingValue(**change, key);
        if ((*change)->key == key) return (*change)->value;
    }
    std::string path = fileOf(domain);
    if (auto value = known().value(path, key)) return *std::move(value);
    firstReads().tidy(domain);
    const auto begun = KnownPreferences::now();
    auto file = readFile(domain);
    firstReads().tellFailure(domain, file.reason);
    id value = file.values ? file.values->objectForKey(key) : id();
    known().keep(std::move(path), std::move(file), begun);
    return value;
}

PreferenceWrite setPreferenceValue(const std::string& domain, const std::string& key, const id& value,
                                   std::function<void(PreferenceWrite)> ended) {
    if (!isDomain(domain)) {
        NSLog("writing the preferences \"%s\": that is no domain's name", domain.c_str());
        return PreferenceWrite::Failed;
    }
    return change(domain, [&]() -> PendingPreferences::Change {
        std::string refusal;
        if (value && !writeBinaryPropertyList(value, refusal)) {
            NSLog("writing the preferences %s: the value of %s %s", domain.c_str(), key.c_str(), refusal.c_str());
            return nullptr;
        }
        auto made = std::make_shared<PendingPreference>();
        made->key = key;
        made->value = copiedValue(value);
        made->ended = std::move(ended);
        return made;
    });
}

PreferenceWrite setPreferencesFile(const std::string& domain, std::span<const std::uint8_t> bytes) {
    return change(domain, [&] {
        auto made = std::make_shared<PendingPreference>();
        made->whole = NSData::dataWithBytes(bytes);
        return made;
    });
}

std::optional<std::shared_ptr<NSMutableDictionary>> pendingPreferences(const std::string& domain) {
    const auto changes = pending().all(domain);
    if (changes.empty()) return std::nullopt;
    std::shared_ptr<NSMutableDictionary> values = readFile(domain).values;
    for (const auto& change : changes) {
        if (change->whole) {
            values = dictionary(*change->whole);
            continue;
        }
        if (!values) values = NSMutableDictionary::dictionary();
        values->setObject_forKey(change->value, change->key);
    }
    return values;
}

std::string preferencesDomainOfFile(const std::string& logicalPath) {
    const std::filesystem::path path = hostPath(logicalPath);
    if (path.parent_path() != folder() || path.extension() != fileEnd) return {};
    const std::string domain = path.stem();
    return isDomain(domain) ? domain : std::string();
}

bool awaitPendingPreferences(std::chrono::milliseconds timeout) {
    const auto left = pending().awaitNone(timeout);
    for (const auto& [domain, count] : left)
        NSLog("writing the preferences %s: another program holds their lock; changes that are lost: %zu",
              domain.c_str(), count);
    return left.empty();
}

} // namespace seat
