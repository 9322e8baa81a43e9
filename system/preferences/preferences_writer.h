#pragma once

// Changing one preferences file by the agreed order: lock, read afresh, change, write a temporary beside it, flush,
// rename, flush the folder.

#include "platform/foundation/NSData.h"
#include "platform/foundation/id.h"

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace seat {

struct PreferencesWriteResult {
    bool isStored = false;
    bool isBusy = false; // not stored, since another process held the lock for too long
    std::string reason;  // why not; else empty
    std::string aside;   // the name to which a damaged file was moved; else empty
};

struct PreferencesChange {
    std::shared_ptr<NSData> whole;                // nil, or a file to begin with instead of the one that is there
    std::vector<std::pair<std::string, id>> keys; // a nil value removes its key
};

// What to change is asked for when the lock is held, so that of two writers the later one never brings an older value.
class PreferencesChanges {
public:
    virtual ~PreferencesChanges() = default;
    virtual PreferencesChange take() = 0;
    // They are in the file; the lock is held still.
    virtual void stored() = 0;
};

// Real paths. Waits for the lock at most `timeout`, or for as long as it takes. A file that cannot be read as a
// dictionary is moved aside first ("<domain>.damaged-<n>"), byte for byte; what is no file at all, is too large or is
// another user's is left alone, and nothing is stored. When there is nothing to change that counts as stored.
PreferencesWriteResult changePreferencesFile(const std::string& folder, const std::string& domain,
                                             PreferencesChanges& changes,
                                             std::optional<std::chrono::milliseconds> timeout);

// Removes what writers that were killed have left beside the domain's file, which would look like a write under way for
// ever. Never waits.
void removeDeadWritersLeftovers(const std::string& folder, const std::string& domain);

} // namespace seat
