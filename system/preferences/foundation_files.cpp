// The phone's calls for files that may be the preferences': these know what is on its way into them.

#include "kit/foundation/property_list.h"
#include "platform/foundation/NSData.h"
#include "platform/foundation/NSDictionary.h"
#include "platform/log.h"
#include "system/files/atomic_file.h"
#include "system/files/root.h"
#include "system/preferences/preferences_store.h"

#include <cerrno>

std::shared_ptr<NSMutableDictionary> NSMutableDictionary::dictionaryWithContentsOfFile(const std::string& path) {
    if (const auto domain = seat::preferencesDomainOfFile(path); !domain.empty())
        if (auto pending = seat::pendingPreferences(domain)) return *pending;
    const std::string file = seat::hostPath(path);
    std::shared_ptr<NSError> error;
    const id value = seat::readPropertyListFile(file, &error);
    if (!value) {
        // That a file is not there yet is no failure worth a line.
        if (error->code() != ENOENT) NSLog("%s", error->localizedDescription().c_str());
        return nullptr;
    }
    auto dictionary = value.object<NSMutableDictionary>();
    if (!dictionary) NSLog("property list %s is no dictionary", file.c_str());
    return dictionary;
}

bool NSData::writeToFile_options_error(const std::string& path, unsigned long options,
                                       std::shared_ptr<NSError>* error) const {
    const bool isAtomic = options & NSDataWritingAtomic;
    if (const auto domain = seat::preferencesDomainOfFile(path); isAtomic && !domain.empty()) {
        // The reason has been logged.
        if (seat::setPreferencesFile(domain, m_bytes) != seat::PreferenceWrite::Failed) return true;
        if (error) *error = NSError::errorWithDescription("writing " + path + ": it could not be stored");
        return false;
    }
    const std::string file = seat::hostPath(path);
    const auto failure = isAtomic ? seat::writeFileAtomically(file, m_bytes) : seat::writeFile(file, m_bytes);
    if (!failure) return true;
    NSLog("%s", failure->localizedDescription().c_str());
    if (error) *error = failure;
    return false;
}
