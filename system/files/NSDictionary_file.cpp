#include "kit/foundation/property_list.h"
#include "platform/foundation/NSDictionary.h"
#include "platform/log.h"
#include "system/files/root.h"

#include <cerrno>

std::shared_ptr<NSMutableDictionary> NSMutableDictionary::dictionaryWithContentsOfFile(const std::string& path) {
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
