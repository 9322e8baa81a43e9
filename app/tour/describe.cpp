#include "app/tour/describe.h"

#include "platform/foundation/NSArray.h"
#include "platform/foundation/NSData.h"
#include "platform/foundation/NSString.h"

namespace {

void compare(const std::string& prefix, const NSDictionary& before, const NSDictionary& after,
             std::vector<std::string>& changes) {
    before.enumerate([&](const std::string& key, const id& old) {
        const id& now = after.objectForKey(key);
        if (now == old) return true;
        const auto* const oldInner = old.objectPointer<NSDictionary>();
        const auto* const newInner = now.objectPointer<NSDictionary>();
        if (oldInner && newInner)
            compare(prefix + key + ".", *oldInner, *newInner, changes);
        else
            changes.push_back(prefix + key + (now ? " = " + app::describe(now) : " removed"));
        return true;
    });
    after.enumerate([&](const std::string& key, const id& now) {
        if (!before.objectForKey(key)) changes.push_back(prefix + key + " = " + app::describe(now));
        return true;
    });
}

} // namespace

std::string app::describe(const id& value) {
    if (const auto* const number = value.number()) {
        if (number->type() == NSNumber::Type::Bool) return number->boolValue() ? "true" : "false";
        return number->isFloatingPoint() ? NSStringWithFormat("%g", number->doubleValue())
                                         : NSStringFromInteger(number->integerValue());
    }
    if (const auto* const string = value.string()) return '"' + *string + '"';
    if (const auto* const data = value.objectPointer<NSData>()) return std::to_string(data->length()) + " bytes";
    if (const auto* const dictionary = value.objectPointer<NSDictionary>())
        return std::to_string(dictionary->count()) + " entries";
    if (const auto* const array = value.objectPointer<NSArray>()) return std::to_string(array->count()) + " elements";
    return value.date() ? "a date" : "nothing";
}

std::vector<std::string> app::describeChanges(const NSDictionary* before, const NSDictionary* after) {
    static const auto* const none = new std::shared_ptr<NSDictionary>(NSDictionary::dictionary());
    std::vector<std::string> changes;
    compare("", before ? *before : **none, after ? *after : **none, changes);
    return changes;
}
