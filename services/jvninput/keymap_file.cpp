#include "services/jvninput/keymap_file.h"

#include "kit/foundation/property_list.h"
#include "platform/foundation/NSDictionary.h"
#include "platform/foundation/NSError.h"

#include <charconv>

namespace jvninput {

namespace {

constexpr const char* keymapKey = "JVNKeyboardKeymapKey";
constexpr std::int64_t lastInput = 21;

std::optional<std::uint16_t> usageOf(const std::string& key) {
    std::uint16_t usage = 0;
    const auto [end, error] = std::from_chars(key.data(), key.data() + key.size(), usage);
    const bool isNumber = error == std::errc() && end == key.data() + key.size();
    return isNumber && usage > 0 && usage < 256 ? std::optional(usage) : std::nullopt;
}

} // namespace

std::optional<input::Settings> readKeymapFile(const std::string& path, std::size_t& leftOut, std::string& complaint) {
    std::shared_ptr<NSError> error;
    const auto file = seat::readPropertyListFile(path, &error).object<NSDictionary>();
    if (!file) {
        complaint = error ? error->localizedDescription() : path + ": no dictionary";
        return std::nullopt;
    }
    auto keymap = file->objectForKey(keymapKey).object<NSDictionary>();
    if (!keymap) keymap = file;

    auto settings = input::makeMessage<input::Settings>();
    settings.keyboardPlays = 1;
    leftOut = 0;
    keymap->enumerate([&](const std::string& key, const id& value) {
        const auto usage = usageOf(key);
        const auto input = value.integerValue();
        if (usage && input >= 1 && input <= lastInput && settings.bindingCount < input::maximumBindings)
            settings.bindings[settings.bindingCount++] = {*usage, static_cast<std::uint16_t>(input)};
        else
            ++leftOut;
        return true;
    });
    if (settings.bindingCount > 0) return settings;
    complaint = path + ": no keymap";
    return std::nullopt;
}

} // namespace jvninput
