// Preferences: property-list files among the files in memory, changed one key at a time.

#include "kit/foundation/property_list.h"
#include "kit/seat.h"
#include "platform/foundation/NSDictionary.h"
#include "platform/foundation/NSPropertyListSerialization.h"
#include "platform/log.h"
#include "tests/memory_seat/Files.h"

#include <mutex>

namespace {

std::mutex writing;

std::string fileOf(const std::string& domain) { return "/var/mobile/Library/Preferences/" + domain + ".plist"; }

std::shared_ptr<NSMutableDictionary> valuesOf(const std::string& domain) {
    std::shared_ptr<NSError> error;
    return seat::readPropertyListFile(fileOf(domain), &error).object<NSMutableDictionary>();
}

// A damaged file keeps its bytes under another name.
void moveAside(const std::string& file) {
    const auto bytes = memory_seat::Files::read(file);
    if (!bytes) return;
    std::string aside = file + ".damaged";
    for (int n = 1; memory_seat::Files::read(aside); ++n) aside = file + ".damaged-" + std::to_string(n);
    memory_seat::Files::write(aside, *bytes);
    NSLog("preferences %s: damaged, moved aside to %s", file.c_str(), aside.c_str());
}

} // namespace

id seat::preferenceValue(const std::string& domain, const std::string& key) {
    const auto values = valuesOf(domain);
    return values ? values->objectForKey(key) : id();
}

seat::PreferenceWrite seat::setPreferenceValue(const std::string& domain, const std::string& key, const id& value,
                                               std::function<void(PreferenceWrite)>) {
    const std::lock_guard lock(writing);
    const std::string file = fileOf(domain);
    const auto failed = [&](const std::string& reason) {
        NSLog("writing the preferences %s: %s", domain.c_str(), reason.c_str());
        return PreferenceWrite::Failed;
    };
    auto values = NSMutableDictionary::dictionary();
    if (const auto bytes = memory_seat::Files::read(file)) {
        std::string refusal = "is too large";
        const bool isTooLong = bytes->size() > propertyListMaximumLength;
        values = isTooLong ? nullptr : readPropertyList(*bytes, nullptr, refusal).object<NSMutableDictionary>();
        // Nobody can say whether it is damaged.
        if (!values && (isTooLong || isBeyondPropertyListBounds(refusal))) return failed(refusal);
        if (!values) {
            moveAside(file);
            values = NSMutableDictionary::dictionary();
        }
    }
    values->setObject_forKey(value, key);
    std::shared_ptr<NSError> error;
    const auto data = NSPropertyListSerialization::dataWithPropertyList_format_options_error(
        values, NSPropertyListBinaryFormat_v1_0, 0, &error);
    if (!data) return failed(error->localizedDescription());
    const memory_seat::Bytes stored(data->bytes().begin(), data->bytes().end());
    return memory_seat::Files::write(file, stored) ? PreferenceWrite::Stored : failed("no file can stand there");
}
