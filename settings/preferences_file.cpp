#include "settings/preferences_file.h"

#include "platform/foundation/NSFileManager.h"
#include "settings/preferences.h"

#include <algorithm>

bool JVNPreferencesFileStillInAtomicWrite() {
    const auto names = NSFileManager::defaultManager()->contentsOfDirectoryAtPath_error(preferences::folder, nullptr);
    if (!names) return false;
    return std::count_if(names->begin(), names->end(),
                         [](const std::string& name) { return name.starts_with(preferences::fileName); }) > 1;
}
