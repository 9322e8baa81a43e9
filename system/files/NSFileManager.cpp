#include "platform/foundation/NSFileManager.h"

#include "platform/log.h"
#include "system/files/files.h"
#include "system/files/root.h"

#include <cerrno>
#include <dirent.h>
#include <string_view>

NS_CLASS_IMPLEMENTATION(NSFileManager, NSObject)

std::shared_ptr<NSFileManager> NSFileManager::defaultManager() {
    static const auto* const manager = new std::shared_ptr<NSFileManager>(alloc());
    return *manager;
}

std::optional<std::vector<std::string>>
NSFileManager::contentsOfDirectoryAtPath_error(const std::string& path, std::shared_ptr<NSError>* error) const {
    const std::string folder = seat::hostPath(path);
    std::vector<std::string> names;
    const std::unique_ptr<DIR, int (*)(DIR*)> stream(::opendir(folder.c_str()),
                                                     [](DIR* opened) { return ::closedir(opened); });
    int number = errno;
    while (stream) {
        errno = 0; // the only way to tell the end from a failure
        const dirent* const entry = ::readdir(stream.get());
        number = errno;
        if (!entry) break;
        if (const std::string_view name = entry->d_name; name != "." && name != "..") names.emplace_back(name);
    }
    if (stream && number == 0) return names;

    const auto failure = seat::fileError("listing", folder, number);
    if (number != ENOENT) NSLog("%s", failure->localizedDescription().c_str());
    if (error) *error = failure;
    return std::nullopt;
}
