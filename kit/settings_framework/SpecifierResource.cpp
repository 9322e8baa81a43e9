#include "kit/settings_framework/SpecifierResource.h"

#include "kit/foundation/translation.h"
#include "kit/seat.h"
#include "kit/settings_framework/bundle.h"
#include "platform/foundation/NSArray.h"
#include "platform/foundation/NSPropertyListSerialization.h"

#include <algorithm>
#include <array>
#include <set>
#include <string>
#include <string_view>
#include <utility>

namespace seat {
namespace {

constexpr std::size_t largest = 4u << 20;
constexpr std::size_t mostItems = 10'000;

constexpr std::array<std::pair<const char*, PSCellType>, 5> kinds{{{"PSGroupCell", PSCellType::Group},
                                                                   {"PSLinkListCell", PSCellType::LinkList},
                                                                   {"PSSwitchCell", PSCellType::Switch},
                                                                   {"PSButtonCell", PSCellType::Button},
                                                                   {"PSStaticTextCell", PSCellType::StaticText}}};

// Those that the framework itself reads must be of the kind it reads.
constexpr std::array stringProperties{"id", "key", "defaults", "PostNotification", "cellClass", "footerText"};

// Of an item that are no properties of its row.
constexpr std::array<std::string_view, 5> notOfTheRow{"cell", "label", "action", "JVNOnlyFor", "JVNNotFor"};

// Properties that are texts for the user, or lists of them.
const std::set<std::string> shownTexts{"footerText", "validTitles"};

id translatedTexts(const id& value) {
    if (const auto* const text = value.string()) return id(translated(*text));
    const auto* const texts = value.objectPointer<NSArray>();
    if (!texts) return value;
    const auto result = NSArray::array();
    for (const id& text : *texts) result->addObject(translatedTexts(text));
    return id(result);
}

std::optional<PSCellType> kindNamed(const id& name) {
    for (const auto& [known, kind] : kinds)
        if (name.string() && *name.string() == known) return kind;
    return std::nullopt;
}

bool isStringOrAbsent(const NSDictionary& item, const char* key) {
    return !item.objectForKey(key) || item.objectForKey(key).string();
}

// Why the item is not one; empty when it is.
std::string faultOf(const NSDictionary& item) {
    if (!kindNamed(item.objectForKey("cell"))) return "its \"cell\" is no known kind";
    for (const char* key : {"label", "action"})
        if (!isStringOrAbsent(item, key)) return std::string("its \"") + key + "\" is no string";
    for (const char* key : stringProperties)
        if (!isStringOrAbsent(item, key)) return std::string("its \"") + key + "\" is no string";
    for (const char* const conditions : {"JVNOnlyFor", "JVNNotFor"})
        if (item.objectForKey(conditions) && !item.objectForKey(conditions).objectPointer<NSDictionary>())
            return std::string("its \"") + conditions + "\" is no dictionary";
    if (kindNamed(item.objectForKey("cell")) != PSCellType::LinkList) return {};
    const auto* values = item.objectForKey("validValues").objectPointer<NSArray>();
    const auto* titles = item.objectForKey("validTitles").objectPointer<NSArray>();
    if (!values || !titles || values->count() != titles->count())
        return "it has not as many \"validTitles\" as \"validValues\"";
    for (const id& title : *titles)
        if (!title.string()) return "one of its \"validTitles\" is no string";
    return {};
}

std::shared_ptr<PSSpecifier> makeRow(const NSDictionary& item, const std::shared_ptr<NSObject>& target) {
    const auto text = [&](const char* key) {
        const auto* string = item.objectForKey(key).string();
        return string ? *string : std::string();
    };
    const bool isBound = bool(item.objectForKey("key"));
    auto row = PSSpecifier::preferenceSpecifierNamed_target_set_get_detail_cell_edit(
        translated(text("label")), target, isBound ? SEL("setPreferenceValue:specifier:") : SEL(),
        isBound ? SEL("readPreferenceValue:") : SEL(), nullptr, *kindNamed(item.objectForKey("cell")), nullptr);
    if (const std::string action = text("action"); !action.empty()) row->setButtonAction(action);
    item.enumerate([&](const std::string& key, const id& value) {
        if (std::ranges::find(notOfTheRow, key) == notOfTheRow.end())
            row->setProperty_forKey(shownTexts.contains(key) ? translatedTexts(value) : value, key);
        return true;
    });
    return row;
}

// What the setting of a row of the resource stands at; nothing without such a row.
std::optional<long> settingOf(const NSArray& items, const std::string& identifier) {
    for (std::size_t i = 0; i < items.count(); ++i) {
        const auto* const item = items.objectAtIndex(i).objectPointer<NSDictionary>();
        if (!item || item->objectForKey("id") != id(identifier)) continue;
        const auto* const domain = item->objectForKey("defaults").string();
        const auto* const key = item->objectForKey("key").string();
        if (!domain || !key) continue;
        const id stored = preferenceValue(*domain, *key);
        return (stored ? stored : item->objectForKey("default")).integerValue();
    }
    return std::nullopt;
}

bool isOneOf(const id& values, std::optional<long> setting) {
    const auto* const list = values.objectPointer<NSArray>();
    return setting && list && std::ranges::any_of(*list, [&](const id& one) { return one.integerValue() == *setting; });
}

bool isWanted(const NSDictionary& item, const NSArray& items) {
    bool isWanted = true;
    const auto check = [&](const char* conditions, bool mustBe) {
        const auto* const settings = item.objectForKey(conditions).objectPointer<NSDictionary>();
        if (!settings) return;
        settings->enumerate([&](const std::string& row, const id& values) {
            isWanted &= isOneOf(values, settingOf(items, row)) == mustBe;
            return isWanted;
        });
    };
    check("JVNOnlyFor", /*mustBe=*/true);
    check("JVNNotFor", /*mustBe=*/false);
    return isWanted;
}

} // namespace

std::optional<SpecifierResource> readSpecifierResource(const std::string& realPath,
                                                       const std::shared_ptr<NSObject>& target) {
    const auto refuse = [&](const std::string& reason) {
        reportResourceFault(realPath, reason);
        return std::nullopt;
    };
    std::shared_ptr<NSError> error;
    const auto data = readFile(realPath, largest, &error);
    if (!data) return refuse(error ? error->localizedDescription() : "it cannot be read");
    const id root = NSPropertyListSerialization::propertyListWithData_options_format_error(*data, 0, nullptr, &error);
    const auto* dictionary = root.objectPointer<NSDictionary>();
    if (!root && error) return refuse(error->localizedDescription());
    const auto* items = dictionary ? dictionary->objectForKey("items").objectPointer<NSArray>() : nullptr;
    if (!items) return refuse("it is no dictionary with \"items\"");
    if (items->count() > mostItems) return refuse("it has more than 10,000 items");

    SpecifierResource resource;
    if (const auto* title = dictionary->objectForKey("title").string()) resource.title = translated(*title);
    std::string faults;
    std::size_t faultCount = 0;
    for (std::size_t i = 0; i < items->count(); ++i) {
        const auto* item = items->objectAtIndex(i).objectPointer<NSDictionary>();
        const std::string fault = item ? faultOf(*item) : "it is no dictionary";
        if (!fault.empty()) {
            if (++faultCount == 1) faults = "item " + std::to_string(i) + " is left out: " + fault;
            continue;
        }
        if (isWanted(*item, *items)) resource.specifiers.push_back(makeRow(*item, target));
    }
    if (faultCount > 1) faults += "; others left out: " + std::to_string(faultCount - 1);
    if (faultCount > 0) reportResourceFault(realPath, faults);
    return resource;
}

} // namespace seat
