#include "kit/settings_framework/row_value.h"

#include "platform/foundation/NSArray.h"
#include "platform/foundation/NSString.h"

#include <algorithm>

namespace seat {

id shownValue(const std::shared_ptr<PSSpecifier>& row) {
    const auto target = row->target();
    if (target && row->getter())
        if (id value = objc_msgSend(*target, row->getter(), {id(row)})) return value;
    return row->propertyForKey("default");
}

void storeValue(const std::shared_ptr<PSSpecifier>& row, const id& value) {
    const auto target = row->target();
    if (!target || !row->setter()) return;
    objc_msgSend(*target, row->setter(), {value, id(row)});
    // The cell shows it already.
    row->setProperty_forKey(value, "value");
}

std::string textOf(const id& value) {
    if (const auto* string = value.string()) return *string;
    const auto* number = value.number();
    if (!number) return {};
    if (number->type() == NSNumber::Type::Bool) return number->boolValue() ? "On" : "Off";
    if (number->isFloatingPoint()) return NSStringWithFormat("%g", number->doubleValue());
    return NSStringFromInteger(number->integerValue());
}

std::vector<Choice> choicesOf(const PSSpecifier& row) {
    std::vector<Choice> choices;
    const auto values = row.propertyForKey("validValues").object<NSArray>();
    const auto titles = row.propertyForKey("validTitles").object<NSArray>();
    if (!values || !titles) return choices;
    const std::size_t count = std::min(values->count(), titles->count());
    for (std::size_t i = 0; i < count; ++i)
        choices.push_back({values->objectAtIndex(i), textOf(titles->objectAtIndex(i))});
    return choices;
}

std::optional<std::size_t> choiceOf(const std::vector<Choice>& choices, const id& value) {
    if (!value) return std::nullopt;
    const auto find = [&](auto&& matches) -> std::optional<std::size_t> {
        const auto at = std::find_if(choices.begin(), choices.end(), matches);
        if (at == choices.end()) return std::nullopt;
        return static_cast<std::size_t>(at - choices.begin());
    };
    if (const auto equal = find([&](const Choice& choice) { return choice.value == value; })) return equal;
    return find([&](const Choice& choice) {
        return choice.value.number() && choice.value.integerValue() == value.integerValue();
    });
}

} // namespace seat
