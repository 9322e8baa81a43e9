// What platform/foundation and kit/seat.h want of files.

#include "kit/foundation/property_list.h"
#include "kit/seat.h"
#include "platform/foundation/NSDictionary.h"
#include "platform/foundation/NSFileManager.h"
#include "platform/log.h"
#include "tests/memory_seat/Files.h"

#include <cerrno>

using memory_seat::Files;

NS_CLASS_IMPLEMENTATION(NSFileManager, NSObject)

std::shared_ptr<NSData> seat::readFile(const std::string& path, std::size_t maximumLength,
                                       std::shared_ptr<NSError>* error) {
    const auto bytes = Files::read(path);
    if (bytes && bytes->size() <= maximumLength) return NSData::dataWithBytes(*bytes);
    const auto failed = [&](const char* reason, int number) {
        if (error) *error = NSError::errorWithDescription("reading " + path + reason, number);
        return nullptr;
    };
    if (bytes) return failed(": too large", EFBIG);
    return Files::list(path) ? failed(": a folder", EISDIR) : failed(": no such file", ENOENT);
}

std::shared_ptr<NSData> NSData::dataWithContentsOfFile(const std::string& path, std::size_t maximumLength) {
    std::shared_ptr<NSError> error;
    auto data = seat::readFile(path, maximumLength, &error);
    if (!data && error->code() != ENOENT) NSLog("%s", error->localizedDescription().c_str());
    return data;
}

bool NSData::writeToFile_options_error(const std::string& path, unsigned long, std::shared_ptr<NSError>* error) const {
    if (Files::write(path, m_bytes)) return true;
    const auto failure = NSError::errorWithDescription("writing " + path + ": no file can stand there", ENOTDIR);
    NSLog("%s", failure->localizedDescription().c_str());
    if (error) *error = failure;
    return false;
}

std::shared_ptr<NSMutableDictionary> NSMutableDictionary::dictionaryWithContentsOfFile(const std::string& path) {
    std::shared_ptr<NSError> error;
    const id value = seat::readPropertyListFile(path, &error);
    if (!value) {
        if (error->code() != ENOENT) NSLog("%s", error->localizedDescription().c_str());
        return nullptr;
    }
    auto dictionary = value.object<NSMutableDictionary>();
    if (!dictionary) NSLog("property list %s is no dictionary", path.c_str());
    return dictionary;
}

std::shared_ptr<NSFileManager> NSFileManager::defaultManager() {
    static const auto* const manager = new std::shared_ptr<NSFileManager>(alloc());
    return *manager;
}

std::optional<std::vector<std::string>>
NSFileManager::contentsOfDirectoryAtPath_error(const std::string& path, std::shared_ptr<NSError>* error) const {
    auto names = Files::list(path);
    if (names) return names;
    const bool isFile = Files::read(path) != nullptr;
    const auto failure = NSError::errorWithDescription("listing " + path + (isFile ? ": a file" : ": no such folder"),
                                                       isFile ? ENOTDIR : ENOENT);
    if (isFile) NSLog("%s", failure->localizedDescription().c_str());
    if (error) *error = failure;
    return std::nullopt;
}
