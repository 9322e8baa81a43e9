#pragma once

#include "kit/seat.h"
#include "platform/foundation/NSDictionary.h"

#include <chrono>
#include <condition_variable>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace seat {

// One change of a domain on its way into the file.
struct PendingPreference {
    std::shared_ptr<NSData> whole; // nil, or the whole file
    std::once_flag isWholeRead;
    std::shared_ptr<NSMutableDictionary>
        wholeValues; // once it is read: what the whole file holds; nil for no dictionary
    std::string key; // else one key
    id value;        // nil: to be removed
    std::function<void(PreferenceWrite)> ended;
    PreferenceWrite outcome = PreferenceWrite::Pending;
    bool isWaiting = false; // whoever made it has gone on, and hears of its end by `ended`
};

// What is not in its file yet, in the order of the calls, by domain. Any thread.
class PendingPreferences {
public:
    using Change = std::shared_ptr<PendingPreference>;
    using Changes = std::vector<Change>;

    // True when a worker waits for the lock already, and takes the change along.
    bool add(const std::string& domain, const Change& change);
    // The outcome so far. Pending: from now on it is told by `ended`.
    PreferenceWrite leave(const Change& change);
    Changes all(const std::string& domain) const;
    // Those that have not ended yet do so now, and whoever waits for them is called. Does not allocate.
    void end(const std::string& domain, Changes& changes, PreferenceWrite outcome);
    // The same for all of a domain, and for one that did not come so far.
    void endAll(const std::string& domain, PreferenceWrite outcome, const Change& besides = {});

    // False when a worker waits for the lock of the domain already.
    bool beginWaiting(const std::string& domain);
    // Nothing is left to wait for; otherwise it goes on.
    bool endWaiting(const std::string& domain);
    // There is no worker after all.
    void giveUpWaiting(const std::string& domain);

    // The domains that have something left after the time, with how many changes.
    std::vector<std::pair<std::string, std::size_t>> awaitNone(std::chrono::milliseconds timeout);

private:
    struct Domain {
        Changes changes;
        bool isWaitedFor = false;
    };

    mutable std::mutex m_mutex;
    std::condition_variable m_ended;
    std::map<std::string, Domain> m_domains;
};

} // namespace seat
