#include "system/preferences/preferences_store.h"

#include "platform/dispatch.h"
#include "platform/foundation/NSPropertyListSerialization.h"
#include "platform/log.h"
#include "system/files/Descriptor.h"
#include "system/files/root.h"
#include "system/preferences/PreferencesFile.h"
#include "system/preferences/preferences_writer.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <map>
#include <mutex>

namespace seat {
namespace {

struct KeptValue {
    std::string key;
    id value; // nil: to be removed
    std::uint64_t serial = 0;
    std::function<void()> storedLater;
};

struct Domain {
    std::vector<KeptValue> kept; // in the order of the writes
    bool isWaitedFor = false;    // a worker waits for the lock
    std::string loggedFailure;   // the last failure to read, so that it is told once
    std::string tidiedFolder;    // where dead writers' leftovers have been looked for
};

enum class Outcome { Stored, Busy, Failed };
// Who stores: a worker does not repeat that the lock is still held.
enum class Caller { Writer, Worker };

class Store {
public:
    // Never destroyed: workers may use it to the end of the process.
    static Store& shared() {
        static auto& store = *new Store;
        return store;
    }

    id value(const std::string& domain, const std::string& key);
    bool setValue(const std::string& domain, const std::string& key, const id& value, std::function<void()> later);
    // `own` is the value whose writer learns of it by the result; 0: none.
    Outcome storeKept(const std::string& domain, std::chrono::milliseconds timeout, Caller caller,
                      std::uint64_t own = 0);
    std::vector<std::string> domainsWithKeptValues();

private:
    class KeptChanges;
    void waitForLockElsewhere(const std::string& domain);
    void waitOnWorker(const std::string& domain, std::chrono::steady_clock::time_point deadline);
    void tellReadFailure(const std::string& domain, const PreferencesFile& file);
    void tidyOnce(const std::string& domain);

    std::mutex m_mutex;
    std::map<std::string, Domain> m_domains;
    std::uint64_t m_serial = 0;
};

std::string folder() { return hostPath("/var/mobile/Library/Preferences"); }

bool isDomain(const std::string& domain) {
    return !domain.empty() && domain.size() <= 200 && domain.front() != '.' && domain.find('/') == std::string::npos &&
           domain.find('\0') == std::string::npos;
}

bool isPropertyList(const id& value) {
    std::shared_ptr<NSError> reason;
    return !value || NSPropertyListSerialization::dataWithPropertyList_format_options_error(
                         value, NSPropertyListBinaryFormat_v1_0, 0, &reason);
}

PreferencesFile readFile(const std::string& domain) {
    const Descriptor directory(open(folder().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (directory) return PreferencesFile::read(directory.get(), domain + ".plist");
    PreferencesFile file;
    if (errno == ENOENT) return file;
    file.state = PreferencesFile::State::Unreadable;
    file.reason = std::string("its folder: ") + strerror(errno);
    return file;
}

id Store::value(const std::string& domain, const std::string& key) {
    {
        const std::lock_guard lock(m_mutex);
        if (const auto found = m_domains.find(domain); found != m_domains.end())
            for (const auto& kept : found->second.kept)
                if (kept.key == key) return kept.value;
    }
    tidyOnce(domain);
    const auto file = readFile(domain);
    tellReadFailure(domain, file);
    return file.values ? file.values->objectForKey(key) : id();
}

// Not each time: a writer that is killed is rare, and one that writes cleans up as well.
void Store::tidyOnce(const std::string& domain) {
    const std::string where = folder();
    {
        const std::lock_guard lock(m_mutex);
        if (std::exchange(m_domains[domain].tidiedFolder, where) == where) return;
    }
    removeDeadWritersLeftovers(where, domain);
}

void Store::tellReadFailure(const std::string& domain, const PreferencesFile& file) {
    {
        const std::lock_guard lock(m_mutex);
        std::string& logged = m_domains[domain].loggedFailure;
        if (logged == file.reason) return;
        logged = file.reason;
    }
    if (!file.reason.empty()) NSLog("reading the preferences %s: %s", domain.c_str(), file.reason.c_str());
}

bool Store::setValue(const std::string& domain, const std::string& key, const id& value, std::function<void()> later) {
    std::uint64_t serial = 0;
    {
        const std::lock_guard lock(m_mutex);
        auto& kept = m_domains[domain].kept;
        std::erase_if(kept, [&](const KeptValue& other) { return other.key == key; });
        kept.push_back({key, value, serial = ++m_serial, std::move(later)});
    }
    const Outcome outcome = storeKept(domain, preferencesTimeout, Caller::Writer, serial);
    if (outcome == Outcome::Busy) waitForLockElsewhere(domain);
    return outcome == Outcome::Stored;
}

// The kept values of one domain on their way into its file.
class Store::KeptChanges final : public PreferencesChanges {
public:
    KeptChanges(Store& store, const std::string& domain) : m_store(store), m_domain(domain) {}

    std::vector<std::pair<std::string, id>> take() override {
        const std::lock_guard lock(m_store.m_mutex);
        m_taken = m_store.m_domains[m_domain].kept;
        std::vector<std::pair<std::string, id>> changes;
        for (const auto& kept : m_taken) changes.emplace_back(kept.key, kept.value);
        return changes;
    }
    void stored() override {
        const std::lock_guard lock(m_store.m_mutex);
        // A key that was set again meanwhile waits for its own turn.
        std::erase_if(m_store.m_domains[m_domain].kept, [&](const KeptValue& kept) {
            return std::any_of(m_taken.begin(), m_taken.end(),
                               [&](const KeptValue& written) { return written.serial == kept.serial; });
        });
    }
    void tellExcept(std::uint64_t own) const {
        for (const auto& written : m_taken)
            if (written.serial != own && written.storedLater) written.storedLater();
    }

private:
    Store& m_store;
    const std::string& m_domain;
    std::vector<KeptValue> m_taken;
};

Outcome Store::storeKept(const std::string& domain, std::chrono::milliseconds timeout, Caller caller,
                         std::uint64_t own) {
    KeptChanges changes(*this, domain);
    const auto result = changePreferencesFile(folder(), domain, changes, timeout);
    if (!result.reason.empty() && !(result.isBusy && caller == Caller::Worker))
        NSLog("writing the preferences %s: %s%s", domain.c_str(), result.reason.c_str(),
              result.isStored ? "" : "; the value is kept for this session");
    if (!result.isStored) return result.isBusy ? Outcome::Busy : Outcome::Failed;
    changes.tellExcept(own);
    return Outcome::Stored;
}

std::vector<std::string> Store::domainsWithKeptValues() {
    const std::lock_guard lock(m_mutex);
    std::vector<std::string> names;
    for (const auto& [name, domain] : m_domains)
        if (!domain.kept.empty()) names.push_back(name);
    return names;
}

void Store::waitForLockElsewhere(const std::string& domain) {
    {
        const std::lock_guard lock(m_mutex);
        if (std::exchange(m_domains[domain].isWaitedFor, true)) return;
    }
    waitOnWorker(domain, std::chrono::steady_clock::now() + std::chrono::minutes(1));
}

// In short waits, so that the end of the process never has to wait for a long one.
void Store::waitOnWorker(const std::string& domain, std::chrono::steady_clock::time_point deadline) {
    dispatch_async(dispatch_get_global_queue(DISPATCH_QUEUE_PRIORITY_DEFAULT, 0), [this, domain, deadline] {
        const Outcome outcome = storeKept(domain, std::chrono::milliseconds(100), Caller::Worker);
        if (outcome == Outcome::Busy && std::chrono::steady_clock::now() < deadline)
            return waitOnWorker(domain, deadline);
        const std::lock_guard lock(m_mutex);
        m_domains[domain].isWaitedFor = false;
    });
}

} // namespace

id preferenceValue(const std::string& domain, const std::string& key) {
    return isDomain(domain) ? Store::shared().value(domain, key) : id();
}

bool setPreferenceValue(const std::string& domain, const std::string& key, const id& value,
                        std::function<void()> storedLater) {
    if (!isDomain(domain)) {
        NSLog("writing the preferences \"%s\": that is no domain's name", domain.c_str());
        return false;
    }
    if (!isPropertyList(value)) {
        NSLog("writing the preferences %s: the value of %s is no property-list value", domain.c_str(), key.c_str());
        return false;
    }
    return Store::shared().setValue(domain, key, value, std::move(storedLater));
}

bool storeKeptPreferences(std::chrono::milliseconds timeout) {
    bool isAllStored = true;
    for (const auto& domain : Store::shared().domainsWithKeptValues())
        if (Store::shared().storeKept(domain, timeout, Caller::Writer) != Outcome::Stored) isAllStored = false;
    return isAllStored;
}

} // namespace seat
